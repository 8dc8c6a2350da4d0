/* Decodes a file that holds one message dbginfo_key_l2vpn, for example key.bin beside this source:
 * docs/wire-format.md explains its bytes. Needs no middleware.
 *
 *   decode_file FILE
 */
#include <inttypes.h>
#include <stdio.h>

#include "mesh_l2vpn/l2vpn_cfg.h"

int main(int argc, char** argv) {
  uint8_t buffer[65536];
  dbginfo_key_l2vpn key = {0}; /* zeros: a rejection may leave the record as it was */
  uint32_t length;
  FILE* const file = argc == 2 ? fopen(argv[1], "rb") : NULL;
  if (file == NULL) {
    fprintf(stderr, "usage: decode_file FILE\n");
    return 2;
  }
  length = (uint32_t)fread(buffer, 1, sizeof buffer, file);
  fclose(file);

  dbginfo_key_l2vpn__unpack(buffer, length, &key);
  printf("%" PRIu32 " bytes: f0 0x%04x, f1 0x%04x, f2 0x%08" PRIx32 ", f3", length, key.f0, key.f1,
         key.f2);
  /* Test the pointer: a rejection may leave a length without a byte string. */
  if (key.f3 != NULL) {
    printf(" \"%.*s\"\n", (int)key.f3_len, (const char*)key.f3);
  } else {
    printf(" none\n");
  }
  dbginfo_key_l2vpn_free__unpacked(&key);
  return 0;
}
