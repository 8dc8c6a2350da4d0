// Every peer encodes a record's fields into bytes and decodes the bytes into a record, with the
// same records as our own operations.
#pragma once

#include <cstdlib>
#include <span>
#include <string>

#include "bench/groups.hpp"
#include "bench/operations.hpp"

// The fields of the records that the peers encode: S, a scalar; A, an array with its size;
// B, a byte string.
// clang-format off
#define BENCH_FIELDS_Stp(S, A, B) S(0) S(1) S(2) S(3)
#define BENCH_FIELDS_VplsAc(S, A, B) S(0) S(1) S(2) S(3) S(4) S(5) S(6) S(7) A(8, 12) A(9, 12)
#define BENCH_FIELDS_VllPw(S, A, B)                                                  \
  S(0) S(1) S(2) S(3) S(4) S(5) S(6) S(7) S(8) S(9) S(10) S(11) S(12) S(13) S(14)    \
  S(15) S(16) S(17) S(18) S(19) S(20) S(21) S(22) A(23, 28) A(24, 28)
#define BENCH_FIELDS_PwStat(S, A, B) \
  S(0) S(1) S(2) A(3, 3) S(4) S(5) S(6) S(7) S(8) S(9) S(10) S(11) S(12)
#define BENCH_FIELDS_DebugKey(S, A, B) S(0) S(1) S(2) B(3)

// Calls X for every shape that the peers have a schema of, with its record.
#define BENCH_SHAPES(X)         \
  X(Stp, l2vpn_sync_stp)        \
  X(VplsAc, l2vpn_sync_vpls_ac) \
  X(VllPw, l2vpn_sync_vll_pw)   \
  X(PwStat, l2vpn_stat_pw_stat) \
  X(DebugKey, dbginfo_key_l2vpn)
// clang-format on

namespace bench::peer {

using Bytes = std::span<const uint8_t>;

// A codec has
//   using Record
//   Bytes encode(const Record& record)               valid until the next call
//   bool decode(Bytes bytes, Record& record)         byte strings are malloc's

inline uint8_t* duplicate(const void* from, size_t count) {
  auto* const copy = static_cast<uint8_t*>(std::malloc(count));
  std::memcpy(copy, from, count);
  return copy;
}

template <typename Record>
void release(Record& record) {
  if constexpr (owns<Record>) {
    std::free(record.f3);
    record.f3 = nullptr;
  }
}

// Aligned to 8 bytes, where the encoding's sizes are.
template <typename Codec>
Encoded encodeAll(Codec& codec, const Records<typename Codec::Record>& records) {
  Captured messages;
  for (const auto& record : records) {
    const Bytes bytes = codec.encode(record);
    messages.bytes.insert(messages.bytes.end(), bytes.begin(), bytes.end());
    messages.ends.push_back(static_cast<uint32_t>(messages.bytes.size()));
  }
  return Encoded(std::move(messages));
}

template <typename Codec>
void requireRoundTrip(const char* name, Codec& codec, const Encoded& encoded,
                      const Records<typename Codec::Record>& records) {
  using Record = typename Codec::Record;
  const Record* expected = records.begin();
  encoded.each([&](const uint8_t* data, uint32_t length) {
    Record decoded{};
    if (!codec.decode({data, length}, decoded) ||
        !equal(schema<Record>, reinterpret_cast<const uint8_t*>(expected++),
               reinterpret_cast<const uint8_t*>(&decoded))) {
      failRoundTrip(name, "a record is not what it was encoded from");
    }
    release(decoded);
  });
}

template <typename Codec>
void encodeCase(benchmark::State& state, const char* name, Shape shape) {
  const Records<typename Codec::Record> records(shape);
  Codec codec;
  const Encoded encoded = encodeAll(codec, records);
  requireRoundTrip(name, codec, encoded, records);
  timePasses(state, [&] {
    for (const auto& record : records) {
      benchmark::DoNotOptimize(codec.encode(record).data());
    }
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Codec>
void decodeCase(benchmark::State& state, const char* name, Shape shape) {
  const Records<typename Codec::Record> records(shape);
  Codec codec;
  const Encoded encoded = encodeAll(codec, records);
  requireRoundTrip(name, codec, encoded, records);
  Placed<typename Codec::Record> into(1);
  timePasses(state, [&] {
    encoded.each([&](const uint8_t* data, uint32_t length) {
      codec.decode({data, length}, into[0]);
      benchmark::DoNotOptimize(into[0]);
      release(into[0]);
    });
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Codec>
bool addCodec(const char* name) {
  for (const Fill fill : {Fill::Full, Fill::Sparse}) {
    const char* const suffix = fill == Fill::Full ? "full" : "sparse";
    std::string prefix("peer/");
    prefix.append(schema<typename Codec::Record>.name).append("/").append(name);
    add(prefix + "_encode_" + suffix, encodeCase<Codec>, name, Shape{.fill = fill});
    add(prefix + "_decode_" + suffix, decodeCase<Codec>, name, Shape{.fill = fill});
  }
  return true;
}

}  // namespace bench::peer
