// The functions of c_calls.cpp, through mesh_l2vpn/messages.hpp.
#include "mesh_l2vpn/messages.hpp"

template <typename T>
void use(const T& record);

bool packVllPw(const l2vpn_sync_vll_pw& record, uint8_t* buffer, uint32_t room, size_t* size) {
  mesh_l2vpn::span<uint8_t> message(buffer, room);
  const bool packed = !mesh_l2vpn::pack(record, message);
  *size = message.size();
  return packed;
}

bool sendVllPw(uint32_t destination, const l2vpn_sync_vll_pw& record) {
  return !mesh_l2vpn::send(destination, record);
}

bool sendVllPws(uint32_t destination, const l2vpn_sync_vll_pw* records, uint32_t count) {
  return !mesh_l2vpn::send(destination, mesh_l2vpn::span(records, count));
}

void unpackVllPw(const uint8_t* data, uint32_t length) {
  use(*mesh_l2vpn::unpack<l2vpn_sync_vll_pw>({data, length}));
}

void unpackKey(const uint8_t* data, uint32_t length) {
  use(*mesh_l2vpn::unpack<dbginfo_key_l2vpn>({data, length}));
}
