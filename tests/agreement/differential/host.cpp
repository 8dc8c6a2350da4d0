#include "host.hpp"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ddm/osal.h"
#include "zarnimesh/mesh.h"

namespace differential {
namespace {

enum CallKind : uint64_t { Allocation, Release, Log };

// The host refuses larger blocks: a few bytes can request many items of 16 KiB.
constexpr uint32_t largestBlock = uint32_t{1} << 17;
constexpr uint32_t arenaSize = uint32_t{1} << 20;

constexpr uint64_t noBlock = UINT64_MAX;

Trace* trace = nullptr;
uint32_t allocationsUntilRefusal = 0;
Sent sent{};

Call& nextCall() {
  if (trace->count == Trace::capacity) {
    std::fputs("more calls than a trace holds\n", stderr);
    std::abort();
  }
  return trace->calls[trace->count++];
}

uint64_t word(const char* text) {
  return reinterpret_cast<uintptr_t>(text);
}

uint32_t take(const mesh_msg_desc* descriptors, uint32_t count) {
  sent.length = 0;
  sent.id = descriptors->msg_id;
  for (uint32_t index = 0; index < count; ++index) {
    const mesh_msg_desc& each = descriptors[index];
    std::memcpy(sent.bytes + sent.length, reinterpret_cast<const uint8_t*>(each.data), each.length);
    sent.length += each.length;
  }
  return 0;
}

}  // namespace

const char* callName(const Call& call) {
  constexpr const char* names[] = {"allocation", "release", "log"};
  return names[call[0]];
}

Block blockOf(const Call& call) {
  return call[0] == Allocation && call[4] != noBlock
             ? Block{static_cast<uint32_t>(call[4]), static_cast<uint32_t>(call[1])}
             : Block{0, 0};
}

const char* loggedFunction(const Call& call) {
  return call[0] == Log ? reinterpret_cast<const char*>(call[4]) : nullptr;
}

void recordInto(Trace& into, uint32_t refused) {
  trace = &into;
  into.count = 0;
  into.used = 0;
  allocationsUntilRefusal = refused;
}

Trace::Trace() : arena(arenaSize) {}

void receiveInto(uint8_t* into) {
  sent.bytes = into;
}

const Sent& lastSent() {
  return sent;
}

}  // namespace differential

using namespace differential;

extern "C" {

void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t line, const char* function, const char* format, ...) {
  Call& call = nextCall();
  call = {Log,
          reinterpret_cast<uintptr_t>(env),
          level | uint64_t{code} << 32,
          line,
          word(function),
          word(file),
          word(format)};
  va_list arguments;
  va_start(arguments, format);
  size_t index = 7;
  for (const char* at = format; (at = std::strchr(at, '%')) != nullptr; at += 2) {
    call.at(index++) =
        at[1] == 's' ? word(va_arg(arguments, const char*)) : uint64_t{va_arg(arguments, uint32_t)};
  }
  va_end(arguments);
}

void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller) {
  const bool isRefused = allocationsUntilRefusal == 1 || size > largestBlock ||
                         trace->used + size + behindBlock > arenaSize;
  allocationsUntilRefusal -= allocationsUntilRefusal != 0;
  const uint64_t at = isRefused ? noBlock : trace->used;
  nextCall() = {Allocation, size, owner, word(caller), at};
  if (isRefused) {
    return nullptr;
  }
  uint8_t* const block = trace->arena.data() + at;
  std::memset(block, unwritten, size + behindBlock);
  trace->used = (trace->used + size + 2 * behindBlock - 1) / behindBlock * behindBlock;
  return block;
}

void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller) {
  return DDM_OsalMemAlloc(size, owner, caller);
}

void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller) {
  const uint64_t at =
      block == nullptr ? noBlock
                       : static_cast<uint64_t>(static_cast<uint8_t*>(block) - trace->arena.data());
  nextCall() = {Release, owner, word(caller), 0, at};
}

uint32_t DDM_OsalMemUseFlagGet(uint32_t) {
  return 1;
}

uint32_t MESH_SendMsg(uint32_t, const mesh_msg_desc* descriptors, uint32_t count) {
  return take(descriptors, count);
}

uint32_t MESH_SendToMsg(uint32_t, const mesh_msg_desc* descriptors, uint32_t count, uint64_t) {
  return take(descriptors, count);
}

uint32_t MESH_RegIDLFuncHook(uint32_t, mesh_unpack_hook, mesh_free_hook) {
  return 0;
}

uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook) {
  return 0;
}

}  // extern "C"
