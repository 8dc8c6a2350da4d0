#include "support/failing_allocation.hpp"

#include <link.h>
#include <unwind.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "support/own_process.hpp"

namespace platform_test {
namespace {

// How many allocations of the middleware are left until one fails; 0, or less when several threads
// allocate at once: none fails.
std::atomic<int> untilFailure = 0;
std::atomic<Threads> failingThreads = Threads::This;
thread_local bool isThisThread = false;

// Where a loaded library lies in memory.
struct Library {
  explicit Library(const char* part) : name(part) {
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* user) {
          auto& self = *static_cast<Library*>(user);
          if (std::strstr(info->dlpi_name, self.name) == nullptr) {
            return 0;
          }
          for (int i = 0; i < info->dlpi_phnum; ++i) {
            const auto& segment = info->dlpi_phdr[i];
            if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
              self.begin = info->dlpi_addr + segment.p_vaddr;
              self.end = self.begin + segment.p_memsz;
            }
          }
          return 1;
        },
        this);
  }
  bool has(uintptr_t address) const { return begin <= address && address < end; }

  const char* name;
  uintptr_t begin = 0;
  uintptr_t end = 0;
};

const Library middleware("libzarnimesh");
const Library standard("libstdc++");

// Whether the middleware allocates, itself or through the standard library. `caller`: of operator
// new.
bool isOfMiddleware(const void* caller) {
  struct Walk {
    uintptr_t caller;
    bool reached = false;
    bool found = false;
  } walk{.caller = reinterpret_cast<uintptr_t>(caller)};
  _Unwind_Backtrace(
      [](_Unwind_Context* context, void* user) {
        auto& self = *static_cast<Walk*>(user);
        const uintptr_t address = _Unwind_GetIP(context);
        self.reached = self.reached || address == self.caller;
        if (!self.reached || standard.has(address)) {
          return _URC_NO_REASON;
        }
        self.found = middleware.has(address);
        return _URC_END_OF_STACK;
      },
      &walk);
  return walk.found;
}

bool allocationFails(const void* caller) {
  return untilFailure > 0 && isThisThread == (failingThreads == Threads::This) &&
         isOfMiddleware(caller) && --untilFailure == 0;
}

}  // namespace

FailingAllocation::FailingAllocation(int number, Threads which) {
  isThisThread = true;
  failingThreads = which;
  untilFailure = number;
}

FailingAllocation::~FailingAllocation() {
  untilFailure = 0;
  isThisThread = false;
}

bool FailingAllocation::happened() {
  return untilFailure <= 0;
}

}  // namespace platform_test

void* operator new(size_t size) {
  if (platform_test::allocationFails(__builtin_return_address(0))) {
    throw std::bad_alloc();
  }
  // The sanitizers' functions know by which one a block was allocated.
  void* const block = platform_test::keepsFreedMemory ? operator new(size, std::nothrow)
                                                      : std::malloc(size > 0 ? size : 1);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}
