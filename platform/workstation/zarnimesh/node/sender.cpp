#include "zarnimesh/node/sender.hpp"

#include <sys/random.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace zarnimesh {
namespace {

// Checks the call against the limits. Sets `payloadBytes` to the sum of the tables' lengths.
[[nodiscard]] mesh_result checkCall(const Settings& settings, const mesh_msg_desc* descriptors,
                                    uint32_t count, uint64_t& payloadBytes) {
  payloadBytes = 0;
  if (descriptors == nullptr && count > 0) {
    return fail(MESH_REFUSED, "null descriptors with a count of %u", count);
  }
  if (count > settings.countLimit()) {
    return fail(MESH_REFUSED, "%u tables exceed the limit of %u", count, settings.countLimit());
  }
  for (uint32_t i = 0; i < count; ++i) {
    if (descriptors[i].data == 0 && descriptors[i].length != 0) {
      return fail(MESH_REFUSED, "descriptor %u: null data with a length", i);
    }
    payloadBytes += descriptors[i].length;
  }
  if (payloadBytes > settings.payloadLimit) {
    return fail(MESH_REFUSED, "%llu bytes of tables exceed the limit of %u",
                static_cast<unsigned long long>(payloadBytes), settings.payloadLimit);
  }
  return MESH_OK;
}

void copyIndex(std::span<const mesh_msg_desc> descriptors, uint8_t* to) {
  for (const mesh_msg_desc& descriptor : descriptors) {
    encodeIndexEntry({.id = descriptor.msg_id, .length = descriptor.length}, to);
    to += indexEntrySize;
  }
}

// Copies adjacent tables with one memcpy.
void copyTables(std::span<const mesh_msg_desc> descriptors, uint8_t* to) {
  for (size_t i = 0; i < descriptors.size();) {
    const uint64_t start = descriptors[i].data;
    uint64_t length = 0;
    do {
      length += descriptors[i].length;
      ++i;
    } while (i < descriptors.size() && descriptors[i].data == start + length);
    if (length > 0) {
      std::memcpy(to, reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(start)), length);
      to += length;
    }
  }
}

}  // namespace

mesh_result Sender::open(std::shared_ptr<Context> context) {
  if (getrandom(&incarnation_, sizeof incarnation_, 0) != sizeof incarnation_) {
    return fail(MESH_SYSTEM_ERROR, "random number: %s", std::strerror(errno));
  }
  context_ = std::move(context);
  return MESH_OK;
}

mesh_result Sender::send(uint32_t destination, const mesh_msg_desc* descriptors, uint32_t count,
                         uint64_t extra) {
  uint64_t payloadBytes = 0;
  mesh_result result = checkCall(settings_, descriptors, count, payloadBytes);
  if (result == MESH_OK) {
    result = trySend(destination, {descriptors, count}, extra, payloadBytes);
  }
  if (result == MESH_OK) {
    statistics_.sentCalls.add(1);
    statistics_.sentRecords.add(count);
    statistics_.sentBytes.add(payloadBytes);
  } else {
    statistics_.countFailure(result);
  }
  return result;
}

mesh_result Sender::trySend(uint32_t destination, std::span<const mesh_msg_desc> descriptors,
                            uint64_t extra, uint64_t payloadBytes) {
  Connection::Parts parts;
  if (!parts[1].allocate(descriptors.size() * indexEntrySize) || !parts[2].allocate(payloadBytes)) {
    return fail(MESH_OUT_OF_MEMORY, "no memory for a message");
  }
  copyIndex(descriptors, parts[1].data());
  copyTables(descriptors, parts[2].data());
  Destination* target = find(destination);
  if (target == nullptr) {
    return fail(MESH_NOT_OPEN, "the node is being closed");
  }
  const FrameHeader header{.source = source_,
                           .destination = destination,
                           .incarnation = incarnation_,
                           .sequence = 0,
                           .extra = extra,
                           .count = static_cast<uint32_t>(descriptors.size()),
                           .payloadBytes = payloadBytes};
  return target->send(header, parts, context_, closing_);
}

Destination* Sender::find(uint32_t address) {
  const std::lock_guard lock(mutex_);
  if (closing_.load()) {
    return nullptr;
  }
  auto& destination = destinations_[address];
  if (destination == nullptr) {
    destination = std::make_unique<Destination>(settings_, address);
  }
  return destination.get();
}

void Sender::close() {
  {
    // No destination is added after this, so the loop below needs no lock.
    const std::lock_guard lock(mutex_);
    closing_.store(true);
  }
  for (const auto& [address, destination] : destinations_) {
    destination->close();
  }
  context_.reset();
}

}  // namespace zarnimesh
