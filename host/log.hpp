// The host's log writer, called by one convention.
#pragma once

#include "host/binding.hpp"

namespace mesh::host {

enum class LogCode : uint32_t {
  Allocation = 12,  // decoding was refused memory
  Report = 22,      // everything else
};

inline constexpr uint32_t logLevel = 2;

// One call of the host's log writer, or nothing where the host has none. `line` is the reporting
// statement's, `function` the operation's name text, `format` and `args` as for printf.
template <typename... Args>
[[gnu::cold, gnu::noinline]] void logError(serial_env& env, LogCode code, uint32_t line,
                                           const char* function, const char* format, Args... args) {
  bindHost(env);
  if (env.logWrite != nullptr) {
    env.logWrite(&env, logLevel, static_cast<uint32_t>(code), "", line, function, format, args...);
  }
}

}  // namespace mesh::host
