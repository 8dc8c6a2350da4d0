/* The middleware's four functions for a program that links the static library and has no
 * middleware: a call ends the process, as the loader ends one that calls a function it does not
 * find. Weak, so that a middleware that is there after all wins. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

struct mesh_msg_desc;

static uint32_t refuse(const char* function) {
  fprintf(stderr, "libmesh_l2vpn: %s was called in a program without a middleware\n", function);
  _Exit(127);
}

#define WEAK __attribute__((weak)) uint32_t

WEAK MESH_SendMsg(uint32_t destination, const struct mesh_msg_desc* descriptors, uint32_t count) {
  (void)destination, (void)descriptors, (void)count;
  return refuse("MESH_SendMsg");
}

WEAK MESH_SendToMsg(uint32_t destination, const struct mesh_msg_desc* descriptors, uint32_t count,
                    uint64_t extra) {
  (void)destination, (void)descriptors, (void)count, (void)extra;
  return refuse("MESH_SendToMsg");
}

WEAK MESH_RegIDLFuncHook(uint32_t msg_id, uint32_t (*unpack)(const uint8_t*, uint32_t, void*),
                         void (*release)(void*)) {
  (void)msg_id, (void)unpack, (void)release;
  return refuse("MESH_RegIDLFuncHook");
}

WEAK MESH_RegIDLResorceCleanFuncHook(void (*clean)(void)) {
  (void)clean;
  return refuse("MESH_RegIDLResorceCleanFuncHook");
}
