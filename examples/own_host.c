/* A host with its own allocator and log writer. The library finds them by name at its first
 * use, so a program must export them: ENABLE_EXPORTS in CMake, -rdynamic otherwise.
 *
 *   own_host
 *
 * Prints the library's calls of its host while it decodes a good and a damaged message.
 */
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include "mesh_l2vpn/l2vpn_cfg.h"

static unsigned blocks_out;
static unsigned lines_logged;

/* `env` points to a record whose first word points to the reporting framework's name. */
void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t line, const char* function, const char* format, ...);
void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller);
void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller);
void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller);
uint32_t DDM_OsalMemUseFlagGet(uint32_t owner);

void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t line, const char* function, const char* format, ...) {
  va_list arguments;
  (void)file, (void)line;
  ++lines_logged;
  printf("log   %s, level %u, code %u, %s: ", *(const char* const*)env, level, code, function);
  va_start(arguments, format);
  vprintf(format, arguments);
  va_end(arguments);
  printf("\n");
}

static void* take(const char* from, uint32_t size, uint32_t owner, const char* caller) {
  printf("take  %u bytes from the %s, owner %u, for %s\n", size, from, owner, caller);
  ++blocks_out;
  return malloc(size);
}

void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller) {
  return take("heap", size, owner, caller);
}

void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller) {
  return take("cache", size, owner, caller);
}

void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller) {
  printf("give  back, owner %u, for %s\n", owner, caller);
  --blocks_out;
  free(block);
}

/* 1: decoding allocates from the cache, and releases to it. */
uint32_t DDM_OsalMemUseFlagGet(uint32_t owner) {
  (void)owner;
  return 1;
}

int main(void) {
  uint8_t text[] = {'v', 's', 'i'};
  const dbginfo_key_l2vpn key = {1, 2, 3, sizeof text, text};
  dbginfo_key_l2vpn received = {0};
  uint8_t buffer[64];
  uint32_t length = sizeof buffer;
  if (dbginfo_key_l2vpn__pack(&key, buffer, &length) != 0) {
    return 1;
  }
  dbginfo_key_l2vpn__unpack(buffer, length, &received);
  dbginfo_key_l2vpn_free__unpacked(&received);

  buffer[0] = 0xFF; /* the root leads past the buffer's end */
  dbginfo_key_l2vpn__unpack(buffer, length, &received);
  return blocks_out == 0 && lines_logged == 1 ? 0 : 1;
}
