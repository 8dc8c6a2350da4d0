# The fields of the records that peers are measured with.
@0xd1f0c5a27b3e9684;

using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("shapes::capnp");

struct Stp {
  f0 @0 :UInt32;
  f1 @1 :UInt32;
  f2 @2 :UInt32;
  f3 @3 :UInt32;
}

struct VplsAc {
  f0 @0 :UInt32;
  f1 @1 :UInt32;
  f2 @2 :UInt32;
  f3 @3 :UInt32;
  f4 @4 :UInt8;
  f5 @5 :UInt8;
  f6 @6 :UInt16;
  f7 @7 :UInt8;
  f8 @8 :Data;
  f9 @9 :Data;
}

struct VllPw {
  f0 @0 :UInt32;
  f1 @1 :UInt32;
  f2 @2 :UInt32;
  f3 @3 :UInt8;
  f4 @4 :UInt8;
  f5 @5 :UInt16;
  f6 @6 :UInt32;
  f7 @7 :UInt32;
  f8 @8 :UInt32;
  f9 @9 :UInt16;
  f10 @10 :UInt16;
  f11 @11 :UInt8;
  f12 @12 :UInt16;
  f13 @13 :UInt8;
  f14 @14 :UInt8;
  f15 @15 :UInt32;
  f16 @16 :UInt32;
  f17 @17 :UInt32;
  f18 @18 :UInt8;
  f19 @19 :UInt8;
  f20 @20 :UInt16;
  f21 @21 :UInt32;
  f22 @22 :UInt32;
  f23 @23 :Data;
  f24 @24 :Data;
}

struct PwStat {
  f0 @0 :UInt32;
  f1 @1 :UInt32;
  f2 @2 :UInt8;
  f3 @3 :Data;
  f4 @4 :UInt32;
  f5 @5 :UInt64;
  f6 @6 :UInt64;
  f7 @7 :UInt64;
  f8 @8 :UInt64;
  f9 @9 :UInt64;
  f10 @10 :UInt64;
  f11 @11 :UInt64;
  f12 @12 :UInt64;
}

struct DebugKey {
  f0 @0 :UInt16;
  f1 @1 :UInt16;
  f2 @2 :UInt32;
  f3 @3 :Data;
}
