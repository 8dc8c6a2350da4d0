#include "zarnimesh/configuration/settings.hpp"

#include <zmq.h>

#include <climits>
#include <cstdlib>
#include <initializer_list>

#include "zarnimesh/configuration/runtime_directory.hpp"

namespace zarnimesh {
namespace {

constexpr uint32_t mostQueued = 1u << 20;
constexpr uint32_t mostThreads = 64;

[[nodiscard]] mesh_result checkNumbers(const mesh_node_options& options) {
  if (options.transport != MESH_TRANSPORT_IPC && options.transport != MESH_TRANSPORT_INPROC) {
    return fail(MESH_BAD_ARGUMENT, "options: unknown transport");
  }
  for (const uint32_t queue : {options.send_queue_calls, options.receive_queue_calls}) {
    if (queue == 0 || queue > mostQueued) {
      return fail(MESH_BAD_ARGUMENT, "options: a queue must hold from 1 to %u calls", mostQueued);
    }
  }
  for (const uint32_t time : {options.connect_timeout_ms, options.send_timeout_ms,
                              options.linger_ms, options.heartbeat_ms}) {
    if (time > INT_MAX) {
      return fail(MESH_BAD_ARGUMENT, "options: a time must be at most %d ms", INT_MAX);
    }
  }
  if (options.payload_limit == 0 || options.queue_bytes == 0) {
    return fail(MESH_BAD_ARGUMENT, "options: payload limit and queues must be at least 1 byte");
  }
  if (options.io_threads == 0 || options.io_threads > mostThreads) {
    return fail(MESH_BAD_ARGUMENT, "options: from 1 to %u I/O threads", mostThreads);
  }
  return MESH_OK;
}

// The name from the options, else from the environment. Null when it is empty.
const char* named(const char* option, const char* variable) {
  const char* name = option != nullptr ? option : std::getenv(variable);
  return name != nullptr && *name != '\0' ? name : nullptr;
}

}  // namespace

mesh_result Settings::read(const mesh_node_options& options) {
  if (const mesh_result result = checkNumbers(options); result != MESH_OK) {
    return result;
  }
  defaultTransport =
      options.transport == MESH_TRANSPORT_INPROC ? Transport::Inproc : Transport::Ipc;
  sendQueueCalls = options.send_queue_calls;
  receiveQueueCalls = options.receive_queue_calls;
  queueBytes = options.queue_bytes;
  heartbeat = std::chrono::milliseconds(options.heartbeat_ms);
  ioThreads = static_cast<int>(options.io_threads);
  connectTimeout = std::chrono::milliseconds(options.connect_timeout_ms);
  sendTimeout = std::chrono::milliseconds(options.send_timeout_ms);
  linger = std::chrono::milliseconds(options.linger_ms);
  payloadLimit = options.payload_limit;
  unknown = options.unknown;
  unknownUser = options.unknown_user;
  peerHook = options.peer;
  peerUser = options.peer_user;
  runtimeDirectory = runtimeDirectoryName(options.runtime_directory);
  if (const mesh_result result = readKeys(options); result != MESH_OK) {
    return result;
  }
  if (options.address_book != nullptr) {
    return book.parse(options.address_book, "address book");
  }
  const char* file = named(nullptr, "ZARNIMESH_ADDRESS_BOOK");
  return file != nullptr ? book.readFile(file) : MESH_OK;
}

mesh_result Settings::readKeys(const mesh_node_options& options) {
  const char* file = named(options.key_file, "ZARNIMESH_KEYS");
  if (file == nullptr) {
    return MESH_OK;
  }
  if (zmq_has("curve") == 0) {
    return fail(MESH_BAD_CONFIGURATION, "keys %s: this build of ZeroMQ has no CURVE", file);
  }
  return keys.emplace().readFile(file);
}

Endpoint Settings::endpointOf(uint32_t address) const {
  if (const Endpoint* endpoint = book.find(address)) {
    return *endpoint;
  }
  const std::string name = std::to_string(address);
  if (defaultTransport == Transport::Inproc) {
    return {.transport = Transport::Inproc, .rest = "node-" + name};
  }
  return {.transport = Transport::Ipc, .rest = runtimeDirectory + "/" + name};
}

uint64_t Settings::messageLimit() const {
  // ZeroMQ adds less than this, with or without encryption.
  constexpr uint64_t overhead = 1024;
  return headerSize + uint64_t{countLimit()} * indexEntrySize + payloadLimit + overhead;
}

}  // namespace zarnimesh
