/* A program that packs and unpacks, in C99: the worked bytes of docs/wire-format.md, and back. */
#include <stdio.h>
#include <string.h>

#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"

static const uint8_t expected[] = {
    0x10, 0x00, 0x00, 0x00, 0x0c, 0x00, 0x17, 0x00, 0x04, 0x00, 0x06, 0x00, 0x08,
    0x00, 0x0c, 0x00, 0x0c, 0x00, 0x00, 0x00, 0x02, 0x01, 0x04, 0x03, 0x08, 0x07,
    0x06, 0x05, 0x04, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 'a',  'b',  'c',
};

int main(void) {
  uint8_t text[] = {'a', 'b', 'c'};
  const dbginfo_key_l2vpn key = {0x0102, 0x0304, 0x05060708, sizeof text, text};
  dbginfo_key_l2vpn received = {0};
  uint8_t buffer[64];
  uint32_t length = sizeof buffer;
  int equal;

  if (dbginfo_key_l2vpn__pack(&key, buffer, &length) != 0 || length != sizeof expected ||
      memcmp(buffer, expected, sizeof expected) != 0) {
    printf("the packed bytes are not the documented ones\n");
    return 1;
  }
  dbginfo_key_l2vpn__unpack(buffer, length, &received);
  equal = received.f0 == key.f0 && received.f2 == key.f2 && received.f3_len == sizeof text &&
          received.f3 != NULL && memcmp(received.f3, text, sizeof text) == 0;
  dbginfo_key_l2vpn_free__unpacked(&received);
  if (!equal || received.f3 != NULL) {
    printf("the record came back another\n");
    return 1;
  }
  printf("packed and unpacked\n");
  return 0;
}
