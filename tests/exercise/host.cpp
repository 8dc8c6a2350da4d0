#include "exercise/host.hpp"

#include <array>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "ddm/osal.h"
#include "zarnimesh/mesh.h"

namespace exercise {

constinit Counts counts{};

namespace {

thread_local uint32_t refusedRequest = 0;
thread_local uint64_t requests = 0;
thread_local uint64_t refused = 0;
thread_local uint32_t answer = 0;
thread_local std::vector<uint8_t> first;

// Uses each byte as an index: memory checkers report an undefined index for certain. They miss an
// undefined byte in a comparison that the other bytes already decide.
constexpr auto weights = [] {
  std::array<uint32_t, 256> list{};
  for (uint32_t value = 0; value < list.size(); ++value) {
    list[value] = value * 0x9E3779B1;
  }
  return list;
}();

// Keeps the compiler from dropping the reads.
thread_local volatile uint64_t sink = 0;

void* take(uint32_t size) {
  if (refusedRequest != 0 && ++requests % refusedRequest == 0) {
    ++refused;
    counts.refusals.fetch_add(1, std::memory_order_relaxed);
    return nullptr;
  }
  counts.blocks.fetch_add(1, std::memory_order_relaxed);
  counts.blocksOut.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size);
}

uint32_t takeTables(const mesh_msg_desc* descriptors, uint32_t count) {
  for (uint32_t index = 0; index < count; ++index) {
    readAll(reinterpret_cast<const uint8_t*>(descriptors[index].data), descriptors[index].length);
  }
  const auto* const table = reinterpret_cast<const uint8_t*>(descriptors[0].data);
  first.assign(table, table + descriptors[0].length);
  counts.calls.fetch_add(1, std::memory_order_relaxed);
  counts.tables.fetch_add(count, std::memory_order_relaxed);
  return answer;
}

}  // namespace

void refuseEvery(uint32_t number) {
  refusedRequest = number;
}

uint64_t refusedHere() {
  return refused;
}

void answerWith(uint32_t result) {
  answer = result;
}

const std::vector<uint8_t>& firstTable() {
  return first;
}

void readAll(const uint8_t* bytes, uint64_t length) {
  uint64_t sum = 0;
  for (uint64_t at = 0; at < length; ++at) {
    sum += weights[bytes[at]];
  }
  sink = sum;
}

}  // namespace exercise

extern "C" {

void DDM_OsalLogWrite(const void*, uint32_t, uint32_t, const char*, uint32_t, const char*,
                      const char* format, ...) {
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  exercise::counts.logs.fetch_add(1, std::memory_order_relaxed);
}

void* DDM_OsalMemAlloc(uint32_t size, uint32_t, const char*) {
  return exercise::take(size);
}

void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t, const char*) {
  return exercise::take(size);
}

void DDM_OsalMemFree(void* block, uint32_t, const char*) {
  if (block != nullptr) {
    exercise::counts.blocksOut.fetch_sub(1, std::memory_order_relaxed);
    std::free(block);
  }
}

uint32_t DDM_OsalMemUseFlagGet(uint32_t) {
  exercise::counts.flagQuestions.fetch_add(1, std::memory_order_relaxed);
  // Slow binding down, so that other threads arrive meanwhile even on one core.
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return 1;
}

uint32_t MESH_SendMsg(uint32_t, const mesh_msg_desc* descriptors, uint32_t count) {
  return exercise::takeTables(descriptors, count);
}

uint32_t MESH_SendToMsg(uint32_t, const mesh_msg_desc* descriptors, uint32_t count, uint64_t) {
  return exercise::takeTables(descriptors, count);
}

uint32_t MESH_RegIDLFuncHook(uint32_t, mesh_unpack_hook, mesh_free_hook) {
  return 0;
}

uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook) {
  return 0;
}

}  // extern "C"
