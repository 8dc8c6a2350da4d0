#include "zarnimesh/node/record_area.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace zarnimesh {
namespace {

size_t pageSize() {
  return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

mesh_result RecordArea::map() {
  // Map all pages without access, then make all but the guard page accessible.
  void* mapped = mmap(nullptr, size + pageSize(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  data_ = mapped != MAP_FAILED ? mapped : nullptr;
  if (data_ == nullptr || mprotect(data_, size, PROT_READ | PROT_WRITE) != 0) {
    return fail(MESH_OUT_OF_MEMORY, "record area: %s", std::strerror(errno));
  }
  return MESH_OK;
}

RecordArea::~RecordArea() {
  if (data_ != nullptr) {
    munmap(data_, size + pageSize());
  }
}

}  // namespace zarnimesh
