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
  std::optional<KeyRing> keys;  // for tcp
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

  // From the address book, else from the default transport.
  Endpoint endpointOf(uint32_t address) const;

  // The most tables of one call.
  uint32_t countLimit() const;

  // The most bytes of one message part.
  int64_t partLimit() const;

  // The most bytes of a whole message on the wire.
  uint64_t messageLimit() const;

 private:
  [[nodiscard]] mesh_result readKeys(const mesh_node_options& options);
};

}  // namespace zarnimesh
