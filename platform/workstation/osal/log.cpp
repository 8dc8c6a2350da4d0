// The log writer: one line per call, on standard error.
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <utility>

#include "ddm/osal.h"
#include "ddm/osal_workstation.h"
#include "osal/export.hpp"
#include "osal/token_bucket.hpp"

namespace ddm {
namespace {

// A pipe takes this many bytes atomically.
constexpr size_t lineSize = 1024;

class Limit {
 public:
  // Whether a line may pass. If so, `suppressed` is the number of lines suppressed before it.
  [[nodiscard]] bool pass(uint64_t& suppressed) {
    const std::lock_guard lock(mutex_);
    if (!bucket_.take(TokenBucket::Clock::now())) {
      ++suppressed_;
      return false;
    }
    suppressed = std::exchange(suppressed_, 0);
    return true;
  }

  uint64_t takeSuppressed() {
    const std::lock_guard lock(mutex_);
    return std::exchange(suppressed_, 0);
  }

  void set(const TokenBucket& bucket) {
    const std::lock_guard lock(mutex_);
    bucket_ = bucket;
  }

 private:
  std::mutex mutex_;  // guards the members below
  TokenBucket bucket_{100, 200};
  uint64_t suppressed_ = 0;
};

constinit Limit logLimit;

// Builds a line. Cuts text that does not fit.
class Line {
 public:
  Line() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
    std::tm local{};
    localtime_r(&seconds, &local);
    used_ = std::strftime(text_, room, "%Y-%m-%d %H:%M:%S", &local);
    append(".%03d ", static_cast<int>(milliseconds % 1000));
  }

  [[gnu::format(printf, 2, 3)]] void append(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    appendList(format, arguments);
    va_end(arguments);
  }

  [[gnu::format(printf, 2, 0)]] void appendList(const char* format, va_list arguments) {
    const int length = std::vsnprintf(text_ + used_, room - used_, format, arguments);
    if (length > 0) {
      used_ = std::min(used_ + static_cast<size_t>(length), room - 1);
    }
  }

  // Writes the line with one call, so that lines of different threads and processes do not mix.
  // Ignores errors: there is nowhere to report them.
  void write() {
    for (size_t i = 0; i < used_; ++i) {
      if (static_cast<unsigned char>(text_[i]) < ' ') {
        text_[i] = ' ';
      }
    }
    text_[used_] = '\n';
    while (::write(STDERR_FILENO, text_, used_ + 1) < 0 && errno == EINTR) {
    }
  }

 private:
  static constexpr size_t room = lineSize;

  char text_[lineSize];
  size_t used_ = 0;
};

void writeSuppressed(uint64_t count) {
  if (count > 0) {
    Line line;
    line.append("%llu lines suppressed", static_cast<unsigned long long>(count));
    line.write();
  }
}

const char* frameworkOf(const void* env) {
  const char* name = env != nullptr ? *static_cast<const char* const*>(env) : nullptr;
  return name != nullptr ? name : "-";
}

const char* orNothing(const char* text) {
  return text != nullptr ? text : "";
}

[[gnu::destructor]] void writeWhatWasSuppressed() {
  writeSuppressed(logLimit.takeSuppressed());
}

}  // namespace
}  // namespace ddm

DDM_OSAL_EXPORT void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code,
                                      const char* file, uint32_t line, const char* function,
                                      const char* format, ...) {
  using namespace ddm;
  const int error = errno;
  uint64_t suppressed = 0;
  if (logLimit.pass(suppressed)) {
    writeSuppressed(suppressed);
    Line text;
    const char* place = orNothing(file);
    text.append("%s level %u code %u %s%s%s:%u: ", frameworkOf(env), level, code, place,
                *place != '\0' ? " " : "", orNothing(function), line);
    va_list arguments;
    va_start(arguments, format);
    text.appendList(orNothing(format), arguments);
    va_end(arguments);
    text.write();
  }
  errno = error;
}

DDM_OSAL_EXPORT void ddm_osal_log_limit(uint32_t per_second, uint32_t burst) {
  ddm::logLimit.set(ddm::TokenBucket(per_second, burst == 0 ? 1 : burst));
}
