// Measures the loading of the library: nanoseconds of one dlopen, with its constructors.
//
//   l2vpn_load_time LIBRARY
#include <dlfcn.h>

#include <chrono>
#include <cstdio>

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "Usage: l2vpn_load_time LIBRARY\n");
    return 2;
  }
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const void* const library = dlopen(arguments[1], RTLD_LAZY);
  const auto end = Clock::now();
  if (library == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  const std::chrono::nanoseconds taken = end - start;
  std::printf("%lld\n", static_cast<long long>(taken.count()));
  return 0;
}
