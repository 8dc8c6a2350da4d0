// A node's options, read and checked.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "zarnimesh/configuration/address_book.hpp"
#include "zarnimesh/configuration/endpoint.hpp"
#include "zarnimesh/configuration/key_ring.hpp"
#include "zarnimesh/node.h"

namespace zarnimesh {

struct Settings {
  Transport defaultTransport = Transport::Ipc;
  AddressBook book;
  std::optional<KeyRing> keys;  // of tcp
  std::string runtimeDirectory;
  int sendQueueCalls = 0;
  int receiveQueueCalls = 0;
  std::chrono::milliseconds connectTimeout{};
  std::chrono::milliseconds sendTimeout{};
  std::chrono::milliseconds linger{};
  uint32_t payloadLimit = 0;
  mesh_unknown_hook unknown = nullptr;
  void* unknownUser = nullptr;

  // Reads the options, the environment, the address book and the keys.
  [[nodiscard]] mesh_result read(const mesh_node_options& options);

  // By the address book, else by the default transport.
  Endpoint endpointOf(uint32_t address) const;

  // Tables of one call; bounds the index as payloadLimit bounds the payload.
  uint32_t countLimit() const;

  // Bytes of the largest part of any message.
  int64_t partLimit() const;

  // Bytes that a whole message takes at most on its way.
  uint64_t messageLimit() const;

 private:
  [[nodiscard]] mesh_result readKeys(const mesh_node_options& options);
};

}  // namespace zarnimesh
