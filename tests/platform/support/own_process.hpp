// This process's use of system resources.
#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace platform_test {

// Sanitizers keep freed memory for a while to detect later use.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool keepsFreedMemory = true;
#elif defined(__has_feature)
inline constexpr bool keepsFreedMemory =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool keepsFreedMemory = false;
#endif

// Of all open files and the directory that is read for it.
inline std::set<int> openDescriptors() {
  std::set<int> descriptors;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    descriptors.insert(std::stoi(entry.path().filename()));
  }
  return descriptors;
}

inline size_t openFiles() {
  return openDescriptors().size();
}

inline size_t mappings() {
  std::ifstream maps("/proc/self/maps");
  return static_cast<size_t>(std::count(std::istreambuf_iterator<char>(maps), {}, '\n'));
}

// Of the calling thread.
inline std::chrono::nanoseconds processorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

inline size_t residentMebibytes() {
  size_t all = 0;
  size_t resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * 4096 >> 20;
}

}  // namespace platform_test
