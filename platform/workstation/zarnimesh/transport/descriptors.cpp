#include "zarnimesh/transport/descriptors.hpp"

#include <dirent.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

namespace zarnimesh {
namespace {

// For ZeroMQ's own and for accepted connections.
constexpr rlim_t reserve = 64;

// At most so many are taken between two counts, which read a directory of all of them.
constexpr int64_t mostUncounted = 512;
constexpr int64_t takenEachTime = 8;

// Nothing when the whole system has none left.
std::optional<rlim_t> openDescriptors(rlim_t limit) {
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir("/proc/self/fd"), closedir);
  if (directory == nullptr && errno == EMFILE) {
    return limit;
  }
  if (directory == nullptr && errno == ENFILE) {
    return std::nullopt;
  }
  rlim_t count = 0;
  while (directory != nullptr && readdir(directory.get()) != nullptr) {
    ++count;
  }
  return count;
}

}  // namespace

mesh_result reserveDescriptors() {
  static std::atomic<int64_t> uncounted = 0;
  if (uncounted.fetch_sub(takenEachTime) > 0) {
    return MESH_OK;
  }
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) {
    return MESH_OK;
  }
  if (limit.rlim_cur < limit.rlim_max) {
    limit.rlim_cur = limit.rlim_max;
    static_cast<void>(setrlimit(RLIMIT_NOFILE, &limit));
    static_cast<void>(getrlimit(RLIMIT_NOFILE, &limit));
  }
  const std::optional<rlim_t> used = openDescriptors(limit.rlim_cur);
  if (!used) {
    return fail(MESH_SYSTEM_ERROR, "file descriptors: %s", std::strerror(ENFILE));
  }
  if (limit.rlim_cur != RLIM_INFINITY && *used + reserve > limit.rlim_cur) {
    return fail(MESH_SYSTEM_ERROR, "%llu of %llu file descriptors are in use (ulimit -n)",
                static_cast<unsigned long long>(*used),
                static_cast<unsigned long long>(limit.rlim_cur));
  }
  const rlim_t left = limit.rlim_cur - *used - reserve;
  uncounted.store(limit.rlim_cur == RLIM_INFINITY
                      ? mostUncounted
                      : std::min<int64_t>(mostUncounted, static_cast<int64_t>(left)));
  return MESH_OK;
}

}  // namespace zarnimesh
