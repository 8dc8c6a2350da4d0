#include "zarnimesh/settings.hpp"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <initializer_list>

#include "zarnimesh/frame.hpp"
#include "zarnimesh/runtime_directory.hpp"

namespace zarnimesh {
namespace {

[[nodiscard]] mesh_result checkNumbers(const mesh_node_options& options) {
  if (options.transport != MESH_TRANSPORT_IPC && options.transport != MESH_TRANSPORT_INPROC) {
    return fail(MESH_BAD_ARGUMENT, "options: no such transport");
  }
  for (const uint32_t queue : {options.send_queue_calls, options.receive_queue_calls}) {
    if (queue == 0 || queue > INT_MAX / 2) {
      return fail(MESH_BAD_ARGUMENT, "options: a queue holds from 1 to %d calls", INT_MAX / 2);
    }
  }
  for (const uint32_t time :
       {options.connect_timeout_ms, options.send_timeout_ms, options.linger_ms}) {
    if (time > INT_MAX) {
      return fail(MESH_BAD_ARGUMENT, "options: a time is at most %d ms", INT_MAX);
    }
  }
  if (options.payload_limit == 0) {
    return fail(MESH_BAD_ARGUMENT, "options: the payload limit is at least 1");
  }
  return MESH_OK;
}

}  // namespace

mesh_result Settings::read(const mesh_node_options& options) {
  if (const mesh_result result = checkNumbers(options); result != MESH_OK) {
    return result;
  }
  defaultTransport =
      options.transport == MESH_TRANSPORT_INPROC ? Transport::Inproc : Transport::Ipc;
  sendQueueCalls = static_cast<int>(options.send_queue_calls);
  receiveQueueCalls = static_cast<int>(options.receive_queue_calls);
  connectTimeout = std::chrono::milliseconds(options.connect_timeout_ms);
  sendTimeout = std::chrono::milliseconds(options.send_timeout_ms);
  linger = std::chrono::milliseconds(options.linger_ms);
  payloadLimit = options.payload_limit;
  unknown = options.unknown;
  unknownUser = options.unknown_user;
  runtimeDirectory = runtimeDirectoryName(options.runtime_directory);

  if (options.address_book != nullptr) {
    return book.parse(options.address_book, "address book");
  }
  const char* file = std::getenv("ZARNIMESH_ADDRESS_BOOK");
  if (file != nullptr && *file != '\0') {
    return book.readFile(file);
  }
  return MESH_OK;
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

uint32_t Settings::countLimit() const {
  return std::max<uint32_t>(8, payloadLimit / indexEntrySize);
}

int64_t Settings::partLimit() const {
  return std::max<int64_t>(
      {payloadLimit, int64_t{countLimit()} * int64_t{indexEntrySize}, int64_t{headerSize}});
}

}  // namespace zarnimesh
