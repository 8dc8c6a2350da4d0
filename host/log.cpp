#include "host/log.hpp"

#include "host/binding.hpp"

namespace mesh::host {
namespace {

enum class LogCode : uint32_t {
  Allocation = 12,  // decoding was refused memory
  Report = 22,      // everything else
};

constexpr uint32_t logLevel = 2;

// One call of the host's log writer, or nothing where the host has none. `line` is the reporting
// statement's, `function` the operation's name text, `format` and `args` as for printf.
template <typename... Args>
void logError(serial_env& env, LogCode code, uint32_t line, const char* function,
              const char* format, Args... args) {
  bindHost(env);
  if (env.logWrite != nullptr) {
    env.logWrite(&env, logLevel, static_cast<uint32_t>(code), "", line, function, format, args...);
  }
}

const char* nullness(const void* pointer) {
  return pointer == nullptr ? "null" : "nonNull";
}

}  // namespace

[[gnu::cold]] void reportUnpackParameters(host::serial_env& env, const char* function,
                                          const void* data, uint32_t length, const void* record) {
  logError(env, LogCode::Report, __LINE__, function, "[VELTA]:Param invalid(%s, %d, %s)",
           nullness(data), static_cast<int32_t>(length), nullness(record));
}

[[gnu::cold]] void reportPackParameters(host::serial_env& env, const char* function,
                                        const void* buffer, uint32_t room, const void* record) {
  logError(env, LogCode::Report, __LINE__, function, "[VELTA]:Param invalid(%s, %u, %s)",
           nullness(buffer), room, nullness(record));
}

[[gnu::cold]] void reportTableOffset(host::serial_env& env, const char* function, uint32_t table,
                                     uint32_t length) {
  logError(env, LogCode::Report, __LINE__, function,
           "[VELTA]:Table offset(%u) is out of range(4 - %u)", table, length);
}

[[gnu::cold]] void reportVtableOffset(host::serial_env& env, const char* function, uint32_t table,
                                      uint32_t largest) {
  logError(env, LogCode::Report, __LINE__, function,
           "[VELTA]:Vtable offset(%u) is out of range(4 - %u)", table, largest);
}

[[gnu::cold]] void reportVtableLength(host::serial_env& env, const char* function,
                                      uint32_t vtableLength, uint32_t left) {
  logError(env, LogCode::Report, __LINE__, function,
           "[VELTA]:Vtable Len(%u) is out of range(0 - %u)", vtableLength, left);
}

[[gnu::cold]] void reportRootAllocation(host::serial_env& env, const char* function,
                                        uint32_t size) {
  MESH_PROBE2(allocation_refused, function, size);
  logError(env, LogCode::Allocation, __LINE__, function,
           "[VELTA]:Malloc unpack data unsuccess, size(%u)", size);
}

// The sixteen blanks are part of the text: readers of logs tell the two decoders apart by them.
[[gnu::cold]] void reportTableAllocation(host::serial_env& env, const char* function,
                                         uint32_t size) {
  MESH_PROBE2(allocation_refused, function, size);
  logError(env, LogCode::Allocation, __LINE__, function,
           "[VELTA]:Malloc unpack data unsuccess,                size(%u)", size);
}

}  // namespace mesh::host
