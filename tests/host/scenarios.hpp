// Calls of the library that use the host.
#pragma once

#include <cstdint>
#include <vector>

#include "mesh_l2vpn/l2vpn_cfg.h"

namespace harness {

// A key whose only field is the byte string "abc".
inline const std::vector<uint8_t> keyWithText{16, 0, 0, 0, 12, 0,  15,  0,   0,  0, 0,
                                              0,  0, 0, 4, 0,  12, 0,   0,   0,  4, 0,
                                              0,  0, 3, 0, 0,  0,  'a', 'b', 'c'};

// Allocates a block on the receiving side, and releases it.
inline bool receiveText() {
  dbginfo_key_l2vpn key;
  dbginfo_key_l2vpn__unpack(keyWithText.data(), static_cast<uint32_t>(keyWithText.size()), &key);
  const bool received = key.f3 != nullptr && key.f3_len == 3 && key.f3[2] == 'c';
  dbginfo_key_l2vpn_free__unpacked(&key);
  return received && key.f3 == nullptr;
}

// Allocates a block on the sending side, and releases it.
inline bool sendKey() {
  const dbginfo_key_l2vpn key{1, 2, 3, 0, nullptr};
  return dbginfo_key_l2vpn__sendsingle(1, &key, 0, 0) == 0;
}

// Makes each side log a line.
inline bool receiveNothing() {
  return dbginfo_key_l2vpn__unpack(nullptr, 0, nullptr) == sizeof(dbginfo_key_l2vpn);
}
inline bool packToNowhere() {
  const dbginfo_key_l2vpn key{};
  uint32_t length = 100;
  return dbginfo_key_l2vpn__pack(&key, nullptr, &length) == 0 && length == 20;
}

}  // namespace harness
