/* Makes every probe of the library fire, in the order that probes.sh expects. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "ddm/osal.h"
#include "mesh_l2vpn/l2vpn_cfg.h"

static int refuses;

/* The address of the binding record, which the probe `bound` has too. */
void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t line, const char* function, const char* format, ...) {
  (void)level, (void)code, (void)file, (void)line, (void)function, (void)format;
  printf("log %p\n", env);
}

void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller) {
  (void)owner, (void)caller;
  return refuses ? NULL : malloc(size);
}

void* DDM_OsalMemCacheAlloc(uint32_t size, uint32_t owner, const char* caller) {
  return DDM_OsalMemAlloc(size, owner, caller);
}

void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller) {
  (void)owner, (void)caller;
  free(block);
}

uint32_t DDM_OsalMemUseFlagGet(uint32_t owner) {
  (void)owner;
  return 1;
}

static uint8_t buffer[256];
static uint8_t text[] = "text";

static void receive(void) {
  dbginfo_key_l2vpn key = {.f0 = 1, .f1 = 2, .f2 = 3, .f3 = text, .f3_len = 4};
  dbginfo_para_l2vpn para = {.f7 = text, .f7_len = 3};
  dbginfo_cmd_key_l2vpn command = {.f0 = 1};
  uint32_t length = sizeof buffer;
  uint8_t root;
  dbginfo_key_l2vpn__pack(&key, buffer, &length);
  root = buffer[0];
  buffer[0] = 0xFF; /* a table at 255 */
  dbginfo_key_l2vpn__unpack(buffer, length, &key);
  buffer[0] = root;
  dbginfo_key_l2vpn__unpack(buffer, length - 1, &key);
  refuses = 1;
  dbginfo_key_l2vpn__unpack(buffer, length, &key);
  length = sizeof buffer;
  dbginfo_para_l2vpn__pack(&para, buffer, &length);
  dbginfo_para_l2vpn__unpack(buffer, length, &para);
  refuses = 0;
  length = sizeof buffer;
  dbginfo_cmd_key_l2vpn__pack(&command, buffer, &length);
  dbginfo_cmd_key_l2vpn__unpack(buffer, length - 1, &command);
}

static void send(void) {
  static l2vpn_cfg_query_dfx_item item;
  static dbginfo_endata_l2vpn endata[2];
  l2vpn_cfg_query_comm_param param = {.f2 = text, .f2_len = UINT32_MAX};
  l2vpn_cfg_query_comm_rec rec = {.f0 = 1};
  refuses = 1;
  l2vpn_cfg_query_dfx_item__sendsingle(1, &item, 0, 0);
  l2vpn_cfg_query_comm_rec__sendsingle(1, &rec, 0, 0);
  dbginfo_endata_l2vpn__sendbatch(1, endata, 2, 0);
  refuses = 0;
  dbginfo_key_l2vpn__sendsingle(1, NULL, 0, 0);
  l2vpn_cfg_query_comm_param__sendsingle(1, &param, 0, 0);
  dbginfo_para_l2vpn__sendbatch(1, NULL, 2, 0);
}

int main(void) {
  receive();
  send();
  return 0;
}
