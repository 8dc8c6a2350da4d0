// What __pack and the send operations return of their own.
#pragma once

#include <cstdint>

namespace mesh::msg {

inline constexpr uint32_t success = 0;
inline constexpr uint32_t failure = 0xFFFFFFFF;

}  // namespace mesh::msg
