// Costs against the batch size, the length of a byte string, and the number of threads.
#include <cstdlib>

#include "bench/groups.hpp"
#include "bench/operations.hpp"
#include "zarnimesh/mesh.h"

namespace bench {
namespace {

template <typename Number>
std::string numbered(std::string name, Number number) {
  return name.append(1, '/').append(std::to_string(number));
}

// Only the one allocation of a batch: room for its tables and their descriptors.
template <typename Record>
void batchAllocatorCase(benchmark::State& state, Shape shape, uint32_t batch) {
  static_assert(isSentFixed<Record>);
  static void* (*volatile allocate)(size_t) = &std::malloc;
  static void (*volatile release)(void*) = &std::free;
  const Records<Record> records(shape);
  const Encoded encoded = encodeAsSent(records);
  const uint32_t batches = records.size() / batch;
  const size_t bytes =
      batch * (static_cast<size_t>(encoded.bytesPerRecord()) + sizeof(mesh_msg_desc));
  timePasses(state, [bytes, batches] {
    for (uint32_t index = 0; index < batches; ++index) {
      release(allocate(bytes));
    }
  });
  report(state, batches * batch, encoded.bytesPerRecord());
}

template <typename Record>
void addBatches() {
  const std::string prefix = std::string("batch/") + schema<Record>.name + "/";
  add(prefix + "copy", copyCase<Record>, Shape{});
  for (uint32_t batch = 16; batch <= recordCount; batch *= 2) {
    add(numbered(prefix + "batch", batch), batchCase<Record>, Shape{}, batch);
    add(numbered(prefix + "allocator", batch), batchAllocatorCase<Record>, Shape{}, batch);
  }
}

// Limits the records, so that the bytes of long strings stay in the caches.
void addLengths() {
  const std::string prefix = "length/dbginfo_key_l2vpn/";
  for (uint32_t length = 16; length <= 16384; length *= 2) {
    const Shape shape{.stringLength = length, .room = uint64_t{384} << 10};
    add(numbered(prefix + "copy", length), copyCase<dbginfo_key_l2vpn>, shape);
    add(numbered(prefix + "pack_full", length), packCase<dbginfo_key_l2vpn>, shape);
    add(numbered(prefix + "unpack_compact_full", length), unpackCompactCase<dbginfo_key_l2vpn>,
        shape);
  }
}

// Wall-clock time: waiting for another thread counts.
template <typename Case, typename... Arguments>
void addThreads(const char* operation, Case run, Arguments... arguments) {
  const std::string name = std::string("thread/l2vpn_sync_vll_pw/") + operation;
  for (const int threads : {1, 2}) {
    add(numbered(name, threads), run, arguments...)->Threads(threads)->UseRealTime();
  }
}

}  // namespace

void addGrowth() {
  using Record = l2vpn_sync_vll_pw;
  addBatches<l2vpn_sync_stp>();
  addBatches<l2vpn_sync_vpls_ac>();
  addBatches<l2vpn_sync_vll_pw>();
  addLengths();
  addThreads("copy", copyCase<Record>, Shape{});
  addThreads("pack_full", packCase<Record>, Shape{});
  addThreads("unpack_compact_full", unpackCompactCase<Record>, Shape{});
  addThreads("unpack_fixed", unpackFixedCase<Record>, Shape{});
  addThreads("single", singleCase<Record>, Shape{});
  addThreads("batch", batchCase<Record>, Shape{}, uint32_t{256});
}

}  // namespace bench
