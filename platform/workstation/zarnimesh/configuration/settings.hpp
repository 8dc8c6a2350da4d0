// A node's options, read and checked.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "zarnimesh/configuration/address_book.hpp"
#include "zarnimesh/configuration/endpoint.hpp"
#include "zarnimesh/configuration/key_ring.hpp"
#include "zarnimesh/node.h"
#include "zarnimesh/transport/frame.hpp"

namespace zarnimesh {

// Calls that a sender may have unconfirmed at a receiver that has not answered yet.
inline constexpr uint32_t initialCredit = 64;

struct Settings {
  Transport defaultTransport = Transport::Ipc;
  AddressBook book;
  std::optional<KeyRing> keys;  // for tcp
  std::string runtimeDirectory;
  uint32_t sendQueueCalls = 0;
  uint32_t receiveQueueCalls = 0;
  uint32_t queueBytes = 0;
  std::chrono::milliseconds heartbeat{};  // 0: none
  int ioThreads = 1;
  std::chrono::milliseconds connectTimeout{};
  std::chrono::milliseconds sendTimeout{};
  std::chrono::milliseconds linger{};
  uint32_t payloadLimit = 0;
  mesh_unknown_hook unknown = nullptr;
  void* unknownUser = nullptr;
  mesh_peer_hook peerHook = nullptr;
  void* peerUser = nullptr;

  // Reads the options, the environment, the address book and the keys.
  [[nodiscard]] mesh_result read(const mesh_node_options& options);

  // From the address book, else from the default transport.
  Endpoint endpointOf(uint32_t address) const;

  // The most tables of one call.
  uint32_t countLimit() const { return std::max<uint32_t>(8, payloadLimit / indexEntrySize); }

  // The most bytes of a whole message on the wire.
  uint64_t messageLimit() const;

 private:
  [[nodiscard]] mesh_result readKeys(const mesh_node_options& options);
};

}  // namespace zarnimesh
