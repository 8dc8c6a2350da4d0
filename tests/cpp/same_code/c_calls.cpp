// The exported operations as C calls them: each function has its twin in cpp_calls.cpp.
#include <cstring>

#include "mesh_l2vpn/messages.h"

template <typename T>
void use(const T& record);

bool packVllPw(const l2vpn_sync_vll_pw& record, uint8_t* buffer, uint32_t room, size_t* size) {
  uint32_t length = room;
  const uint32_t result = l2vpn_sync_vll_pw__pack(&record, buffer, &length);
  *size = length;
  return result == 0;
}

bool sendVllPw(uint32_t destination, const l2vpn_sync_vll_pw& record) {
  return l2vpn_sync_vll_pw__sendsingle(destination, &record, 0, 0) == 0;
}

bool sendVllPws(uint32_t destination, const l2vpn_sync_vll_pw* records, uint32_t count) {
  return l2vpn_sync_vll_pw__sendtomsg(destination, records, count, 0) == 0;
}

void unpackVllPw(const uint8_t* data, uint32_t length) {
  l2vpn_sync_vll_pw record;
  std::memset(&record, 0, sizeof record);
  l2vpn_sync_vll_pw__unpack(data, length, &record);
  use(record);
}

void unpackKey(const uint8_t* data, uint32_t length) {
  dbginfo_key_l2vpn record;
  std::memset(&record, 0, sizeof record);
  dbginfo_key_l2vpn__unpack(data, length, &record);
  use(record);
  dbginfo_key_l2vpn_free__unpacked(&record);
}
