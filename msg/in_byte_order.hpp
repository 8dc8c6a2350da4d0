// The choice between the plain and the byte-reversed codec: one test a message.
#pragma once

#include "host/byte_order.hpp"

namespace mesh::msg {
namespace detail {

// Apart from the plain path, so that the reversed one costs it neither size nor cache. The work
// comes by value: what it captures can then stay in registers on the plain path.
template <typename Work>
[[gnu::cold, gnu::noinline]] auto reversed(Work work) {
  return work.template operator()<host::ByteOrder::Reversed>();
}

}  // namespace detail

// Calls `work`, a template on the byte order that captures by value, with the module's present one.
template <typename Work>
[[gnu::always_inline]] inline auto inByteOrder(const host::Module& module, Work work) {
  if (host::byteOrder(module) == host::ByteOrder::Host) [[likely]] {
    return work.template operator()<host::ByteOrder::Host>();
  }
  return detail::reversed(work);
}

}  // namespace mesh::msg
