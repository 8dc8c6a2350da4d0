// A node's options, read and checked.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "zarnimesh/address_book.hpp"
#include "zarnimesh/endpoint.hpp"
#include "zarnimesh/node.h"

namespace zarnimesh {

struct Settings {
  Transport defaultTransport = Transport::Ipc;
  AddressBook book;
  std::string runtimeDirectory;
  int sendQueueCalls = 0;
  int receiveQueueCalls = 0;
  std::chrono::milliseconds connectTimeout{};
  std::chrono::milliseconds sendTimeout{};
  std::chrono::milliseconds linger{};
  uint32_t payloadLimit = 0;
  mesh_unknown_hook unknown = nullptr;
  void* unknownUser = nullptr;

  // Reads the options, the environment and the address book.
  [[nodiscard]] mesh_result read(const mesh_node_options& options);

  // By the address book, else by the default transport.
  Endpoint endpointOf(uint32_t address) const;

  // Tables of one call; bounds the index as payloadLimit bounds the payload.
  uint32_t countLimit() const;

  // Bytes of the largest part of any message.
  int64_t partLimit() const;
};

}  // namespace zarnimesh
