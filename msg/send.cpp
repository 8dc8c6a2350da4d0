#include "msg/send.hpp"

namespace mesh::msg {

[[gnu::cold]] uint32_t bindAndSend(uint32_t destination, const void* record, uint64_t unused,
                                   uint64_t extra, SendSingle* send, host::Module& module) {
  host::bindUnpackAllocator(module);
  return send(destination, record, unused, extra);
}

}  // namespace mesh::msg
