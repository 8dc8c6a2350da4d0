/* A program that is not position-independent has addresses of its own for a library's functions.
 * What the library registers must be equal to them: hosts compare. */
#include <stdio.h>

#include "mesh_l2vpn/l2vpn_stat.h"
#include "zarnimesh/mesh.h"

static int equal = 0;

uint32_t MESH_RegIDLFuncHook(uint32_t msg_id, mesh_unpack_hook unpack, mesh_free_hook release) {
  equal += msg_id == l2vpn_stat_pw_stat__msg_id &&
           unpack == (mesh_unpack_hook)(void (*)(void)) & l2vpn_stat_pw_stat__unpack &&
           release == (mesh_free_hook)(void (*)(void)) & l2vpn_stat_pw_stat_free__unpacked;
  return 0;
}

uint32_t MESH_RegIDLResorceCleanFuncHook(mesh_clean_hook clean) {
  equal += clean == &l2vpn_stat__send_resource_clean;
  return 0;
}

int main(void) {
  l2vpn_stat_recv_init();
  l2vpn_stat_send_init();
  if (equal != 2) {
    fprintf(stderr, "only %d of 2 registrations have the program's addresses\n", equal);
    return 1;
  }
  return 0;
}
