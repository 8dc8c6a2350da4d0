#include "memory.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace differential {
namespace {

void require(bool holds, const char* what) {
  if (!holds) {
    std::perror(what);
    std::exit(2);
  }
}

uint8_t* map(void* at, size_t size, int protection, int flags, int file) {
  void* const mapped = mmap(at, size, protection, flags, file, 0);
  require(mapped != MAP_FAILED, "mmap");
  return static_cast<uint8_t*>(mapped);
}

TrappedMemory mapBetweenTraps(size_t size, bool isReadOnly) {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const size_t inner = (size + page - 1) / page * page;
  const int file = memfd_create("differential", MFD_CLOEXEC);
  require(file >= 0 && ftruncate(file, static_cast<off_t>(inner)) == 0, "memfd_create");
  uint8_t* const whole = map(nullptr, inner + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1);
  uint8_t* const begin = map(whole + page, inner, isReadOnly ? PROT_READ : PROT_READ | PROT_WRITE,
                             MAP_SHARED | MAP_FIXED, file);
  uint8_t* const writable =
      isReadOnly ? map(nullptr, inner, PROT_READ | PROT_WRITE, MAP_SHARED, file) : begin;
  close(file);
  return {begin, begin + inner, writable};
}

}  // namespace

TrappedMemory mapWritable(size_t size) {
  return mapBetweenTraps(size, false);
}

TrappedMemory mapReadOnly(size_t size) {
  return mapBetweenTraps(size, true);
}

}  // namespace differential
