/** @file
 * Unpacking that says whether the buffer was accepted, and why not. Programs link both libraries:
 * libmesh_l2vpn for the record, libmesh_l2vpn_inspect for the verdict.
 */
#ifndef MESH_L2VPN_INSPECT_HPP
#define MESH_L2VPN_INSPECT_HPP

#include "mesh_l2vpn/inspect.h"
#include "mesh_l2vpn/messages.hpp"

namespace mesh_l2vpn {

/** A record with the verdict on its bytes. */
template <typename T>
struct checked {
  unpacked<T> record; /**< all zeros if the bytes were rejected */
  mesh_l2vpn_verdict verdict = MESH_L2VPN_REJECTED;
  mesh_l2vpn_fault fault{}; /**< position, path and text; empty if the bytes were accepted */

  /** Whether receivers take the bytes. */
  explicit operator bool() const noexcept { return verdict != MESH_L2VPN_REJECTED; }
};

/** The record in the bytes of a message, and whether receivers take them. Verifies first: rejected
 * bytes are not unpacked, and nothing is logged. The verdict is on the bytes alone. If the host
 * refuses memory for an accepted record, its pointers are null. */
template <typename T>
[[nodiscard]] checked<T> checked_unpack(bytes data) noexcept {
  static const mesh_l2vpn_message* const described = mesh_l2vpn_message_by_id(message<T>::id);
  checked<T> unpacking;
  unpacking.verdict = mesh_l2vpn_verify(described, data.data(), data.size(), &unpacking.fault);
  if (unpacking) {
    unpacking.record = unpack<T>(data);
  }
  return unpacking;
}

}  // namespace mesh_l2vpn

#endif
