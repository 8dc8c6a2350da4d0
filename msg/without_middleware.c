/* The middleware's four functions for a program that links the static library and has no
 * middleware: a call ends the process, as the loader ends one that calls a function it does not
 * find. Not for a program that has one: which of the two it would call is a matter of their order.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

struct mesh_msg_desc;

static uint32_t refuse(const char* function) {
  fprintf(stderr, "libmesh_l2vpn: %s was called in a program without a middleware\n", function);
  _Exit(127);
}

uint32_t MESH_SendMsg(uint32_t destination, const struct mesh_msg_desc* descriptors,
                      uint32_t count) {
  (void)destination, (void)descriptors, (void)count;
  return refuse("MESH_SendMsg");
}

uint32_t MESH_SendToMsg(uint32_t destination, const struct mesh_msg_desc* descriptors,
                        uint32_t count, uint64_t extra) {
  (void)destination, (void)descriptors, (void)count, (void)extra;
  return refuse("MESH_SendToMsg");
}

uint32_t MESH_RegIDLFuncHook(uint32_t msg_id, uint32_t (*unpack)(const uint8_t*, uint32_t, void*),
                             void (*release)(void*)) {
  (void)msg_id, (void)unpack, (void)release;
  return refuse("MESH_RegIDLFuncHook");
}

uint32_t MESH_RegIDLResorceCleanFuncHook(void (*clean)(void)) {
  (void)clean;
  return refuse("MESH_RegIDLResorceCleanFuncHook");
}
