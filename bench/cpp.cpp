// The C++ header beside the C calls: the same work on the same records, as each language writes it.
#include <mesh_l2vpn/messages.hpp>

#include "bench/groups.hpp"
#include "bench/operations.hpp"

namespace bench {
namespace {

// Each function is one operation on one record or message.
template <typename Record>
struct FromC {
  static size_t pack(const Record& record, uint8_t* buffer, uint32_t room) {
    return Exported<Record>::pack(&record, buffer, &room) == 0 ? room : 0;
  }
  static bool send(const Record& record) {
    return Exported<Record>::sendSingle(anyDestination, &record) == 0;
  }
  static void unpack(const uint8_t* data, uint32_t length) {
    Record record;
    std::memset(&record, 0, sizeof record);
    Exported<Record>::unpack(data, length, &record);
    benchmark::DoNotOptimize(&record);
    if constexpr (owns<Record>) {
      Exported<Record>::release(&record);
    }
  }
};

template <typename Record>
struct FromCpp {
  static size_t pack(const Record& record, uint8_t* buffer, uint32_t room) {
    mesh_l2vpn::span<uint8_t> packed(buffer, room);
    return mesh_l2vpn::pack(record, packed) ? 0 : packed.size();
  }
  static bool send(const Record& record) { return !mesh_l2vpn::send(anyDestination, record); }
  static void unpack(const uint8_t* data, uint32_t length) {
    const auto record = mesh_l2vpn::unpack<Record>({data, length});
    benchmark::DoNotOptimize(&*record);
  }
};

template <typename Record, typename Calls>
void packThrough(benchmark::State& state) {
  const Records<Record> records({});
  const Encoded encoded = encodeCompact(records);
  Placed<uint8_t> buffer(1024);
  timePasses(state, [&records, to = buffer.data()] {
    for (const Record& record : records) {
      benchmark::DoNotOptimize(Calls::pack(record, to, 1024));
    }
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Record, typename Calls>
void sendThrough(benchmark::State& state) {
  const Records<Record> records({});
  const Encoded encoded = encodeAsSent(records);
  timePasses(state, [&records] {
    for (const Record& record : records) {
      benchmark::DoNotOptimize(Calls::send(record));
    }
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Record, typename Calls>
void unpackThrough(benchmark::State& state) {
  const Records<Record> records({});
  const Encoded encoded = encodeCompact(records);
  timePasses(state, [&encoded] {
    encoded.each([](const uint8_t* data, uint32_t length) { Calls::unpack(data, length); });
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Record>
void addMessage() {
  const std::string prefix = std::string("cpp/") + schema<Record>.name + "/";
  add(prefix + "pack_c", packThrough<Record, FromC<Record>>);
  add(prefix + "pack_cpp", packThrough<Record, FromCpp<Record>>);
  add(prefix + "send_c", sendThrough<Record, FromC<Record>>);
  add(prefix + "send_cpp", sendThrough<Record, FromCpp<Record>>);
  add(prefix + "unpack_c", unpackThrough<Record, FromC<Record>>);
  add(prefix + "unpack_cpp", unpackThrough<Record, FromCpp<Record>>);
}

}  // namespace

void addCpp() {
  addMessage<l2vpn_sync_stp>();
  addMessage<l2vpn_sync_vll_pw>();
  addMessage<l2vpn_sync_vpls_ac_update>();
  addMessage<l2vpn_stat_pw_stat>();
  addMessage<dbginfo_key_l2vpn>();
}

}  // namespace bench
