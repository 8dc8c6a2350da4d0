#include "host/memory.hpp"

#include <cerrno>

namespace mesh::host {
namespace {

// A room above half the address space is a negative length in disguise.
constexpr size_t largestRoom = SIZE_MAX >> 1;

bool overlap(const void* one, const void* other, size_t count) {
  const auto a = reinterpret_cast<uintptr_t>(one);
  const auto b = reinterpret_cast<uintptr_t>(other);
  return (a < b ? b - a : a - b) < count;
}

}  // namespace

int fallbackCopy(void* to, size_t room, const void* from, size_t count) {
  if (to == nullptr || room > largestRoom) {
    return EINVAL;
  }
  if (from == nullptr || count > room || overlap(to, from, count)) {
    std::memset(to, 0, room);
    return count > room ? ERANGE : EINVAL;
  }
  std::memcpy(to, from, count);
  return 0;
}

int fallbackFill(void* to, size_t room, int value, size_t count) {
  if (to == nullptr || room > largestRoom) {
    return EINVAL;
  }
  if (count > room) {
    std::memset(to, value, room);
    return ERANGE;
  }
  std::memset(to, value, count);
  return 0;
}

}  // namespace mesh::host
