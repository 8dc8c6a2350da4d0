#include "exercise/own_memory.hpp"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

namespace exercise {
namespace {

struct Change {
  int protection;
  size_t bytes;
};

size_t protect(uintptr_t start, uintptr_t end, int protection) {
  const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  start -= start % page;
  end += (page - end % page) % page;
  return mprotect(reinterpret_cast<void*>(start), end - start, protection) == 0 ? end - start : 0;
}

int visit(dl_phdr_info* object, size_t, void* wanted) {
  if (std::strstr(object->dlpi_name, "libmesh_l2vpn") == nullptr) {
    return 0;
  }
  for (size_t index = 0; index < object->dlpi_phnum; ++index) {
    const auto& segment = object->dlpi_phdr[index];
    if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W) != 0) {
      const uintptr_t start = object->dlpi_addr + segment.p_vaddr;
      auto* const change = static_cast<Change*>(wanted);
      change->bytes += protect(start, start + segment.p_memsz, change->protection);
    }
  }
  return 1;
}

size_t changeLibrary(int protection) {
  Change change{protection, 0};
  dl_iterate_phdr(&visit, &change);
  return change.bytes;
}

}  // namespace

size_t makeLibraryReadOnly() {
  return changeLibrary(PROT_READ);
}

size_t makeLibraryWritable() {
  return changeLibrary(PROT_READ | PROT_WRITE);
}

}  // namespace exercise
