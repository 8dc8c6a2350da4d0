#include "msg/send.hpp"

namespace mesh::msg {

// The record's type is not in the call's.
#if defined(__clang__)
[[clang::no_sanitize("function", "cfi-icall")]]
#endif
[[gnu::cold]] uint32_t
bindAndSend(uint32_t destination, const void* record, uint64_t unused, uint64_t extra,
            AnySendSingle* send, host::Module& module) {
  host::bindUnpackAllocator(module);
  return send(destination, record, unused, extra);
}

}  // namespace mesh::msg
