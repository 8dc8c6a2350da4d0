#include "support/recorder.hpp"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ddm/osal.h"
#include "zarnimesh/mesh.h"

namespace harness {

Recorder& recorder() {
  static Recorder instance;
  return instance;
}

void resetRecorder() {
  Recorder fresh;
  fresh.blocks = recorder().blocks;
  fresh.blockShift = recorder().blockShift;
  recorder() = fresh;
}

std::vector<std::string> takeTrace() {
  std::vector<std::string> trace;
  trace.swap(recorder().trace);
  return trace;
}

namespace {

__attribute__((format(printf, 1, 2))) void note(const char* format, ...) {
  char line[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof line, format, args);
  va_end(args);
  recorder().trace.emplace_back(line);
}

void* allocate(const char* function, uint32_t size, uint32_t owner, const char* caller) {
  Recorder& r = recorder();
  ++r.allocations;
  const bool refused = (r.failingAllocations & 1) != 0;
  r.failingAllocations >>= 1;
  const bool exhausted = r.failingFrom != 0 && r.allocations >= r.failingFrom;
  if (refused || exhausted || r.everyAllocationFails || r.allocations == r.failingAllocation ||
      size > r.largestBlock) {
    r.lastFailure = r.allocations;
    note("%s size=%u owner=%u caller=\"%s\" -> null", function, size, owner, caller);
    return nullptr;
  }
  uint8_t* const block = static_cast<uint8_t*>(std::malloc(r.blockShift + size)) + r.blockShift;
  // A host's blocks are not zero.
  std::memset(block, 0xC7, size);
  r.blocks[block] = ++r.blocksGiven;
  note("%s size=%u owner=%u caller=\"%s\" -> #%d", function, size, owner, caller, r.blocksGiven);
  return block;
}

}  // namespace
}  // namespace harness

using harness::note;
using harness::recorder;

extern "C" {

void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t line, const char* function, const char* format, ...) {
  char text[400];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  recorder().logOrigins.emplace_back(env, line);
  note("log level=%u code=%u file=\"%s\" function=\"%s\" text=\"%s\"", level, code, file, function,
       text);
}

void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller) {
  return harness::allocate("memAlloc", size, owner, caller);
}

void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller) {
  return harness::allocate("unpackAlloc", size, owner, caller);
}

// The library frees what it received and what it sends through the same function; the owner tells
// them apart.
void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller) {
  const char* const function = owner == 12 ? "unpackFree" : "memFree";
  if (block == nullptr) {
    note("%s null owner=%u caller=\"%s\"", function, owner, caller);
    return;
  }
  auto& blocks = recorder().blocks;
  const auto found = blocks.find(block);
  if (found == blocks.end()) {
    note("%s of a block that is not out, owner=%u caller=\"%s\"", function, owner, caller);
    return;
  }
  note("%s #%d owner=%u caller=\"%s\"", function, found->second, owner, caller);
  blocks.erase(found);
  std::free(static_cast<uint8_t*>(block) - recorder().blockShift);
}

uint32_t DDM_OsalMemUseFlagGet(uint32_t owner) {
  return owner == 12 ? 1 : 0;
}

static void take(const mesh_msg_desc* descriptors, uint32_t count) {
  for (uint32_t index = 0; index < count; ++index) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(descriptors[index].data);
    recorder().sent.push_back({descriptors[index].data,
                               descriptors[index].msg_id,
                               {bytes, bytes + descriptors[index].length}});
  }
}

uint32_t MESH_SendMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count) {
  note("MESH_SendMsg destination=%u count=%u", destination, count);
  take(descriptors, count);
  return recorder().middlewareResult;
}

uint32_t MESH_SendToMsg(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                        uint64_t extra) {
  note("MESH_SendToMsg destination=%u count=%u extra=%llu", destination, count,
       static_cast<unsigned long long>(extra));
  take(descriptors, count);
  return recorder().middlewareResult;
}

uint32_t MESH_RegIDLFuncHook(uint32_t msg_id, mesh_unpack_hook unpack, mesh_free_hook release) {
  harness::Recorder& r = recorder();
  ++r.registrations;
  if (r.refusedRegistration != 0 && r.registrations >= r.refusedRegistration) {
    return r.middlewareResult;
  }
  r.registered.push_back(
      {msg_id, reinterpret_cast<const void*>(unpack), reinterpret_cast<const void*>(release)});
  return 0;
}

uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook clean) {
  recorder().cleanHooks.push_back(clean);
  return recorder().middlewareResult;
}

}  // extern "C"
