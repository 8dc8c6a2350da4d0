// Every message: its cost against its size.
#include "bench/groups.hpp"
#include "bench/operations.hpp"

namespace bench {
namespace {

template <typename Record>
void addMessage() {
  const std::string prefix = std::string("sweep/") + schema<Record>.name + "/";
  // The records of the largest messages stay in the caches, too.
  const Shape shape{.room = uint64_t{512} << 10};
  add(prefix + "copy", copyCase<Record>, shape);
  add(prefix + "single", singleCase<Record>, shape);
  add(prefix + "pack_full", packCase<Record>, shape);
  add(prefix + "unpack_compact_full", unpackCompactCase<Record>, shape);
  if constexpr (isSentFixed<Record>) {
    add(prefix + "unpack_fixed", unpackFixedCase<Record>, shape);
  }
}

}  // namespace

#define BENCH_ADD(X, identifier) addMessage<X>();

void addSweep() {
  L2VPN_MESSAGES(BENCH_ADD)
}

}  // namespace bench
