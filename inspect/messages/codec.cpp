#include "inspect/messages/codec.hpp"

#include <algorithm>
#include <optional>

#include "inspect/bytes/memory_limit.hpp"
#include "inspect/messages/compact_writer.hpp"
#include "msg/receive.hpp"
#include "wire/slow_writer.hpp"

namespace inspect {
namespace {

// What the decoding in progress asks for.
thread_local uint64_t asked = 0;

void* allocate(uint32_t size, uint32_t /*owner*/, const char* /*caller*/) {
  asked += size;
  return asked <= memoryLimit ? std::malloc(size) : nullptr;
}

// A module that is bound from the beginning, to nothing of the host's: it logs nothing, and no
// message of these counts as one that the process has received.
constinit mesh::host::Module module{
    .env = {.hostBound = 1, .unpackBound = 1, .unpackAlloc = &allocate}, .swapBytes = 0};

std::optional<Bytes> compactBytes(const mesh::msg::Message& message, const uint8_t* record) {
  const uint32_t size = compactSize(message, record);
  if (size == 0) {
    return std::nullopt;
  }
  if (size > memoryLimit) {
    failForMemory("this message", size);
  }
  Bytes bytes(size);
  writeCompact(*message.schema, bytes.data(), record);
  return bytes;
}

Bytes fixedBytes(const mesh::msg::Message& message, const uint8_t* record) {
  Bytes bytes(mesh::wire::fixedLength(*message.schema));
  mesh::wire::writeImageAtRunTime(*message.schema, bytes.data(), record);
  return bytes;
}

}  // namespace

Bytes encodeCompact(const KnownMessage& message, const uint8_t* record) {
  auto bytes = compactBytes(*message.message, record);
  if (!bytes) {
    throw Failure(Cause::BadInput, "this " + std::string(message.name) + " is too large to encode");
  }
  return std::move(*bytes);
}

Bytes encodeCompact(const OwnedRecord& record) {
  return encodeCompact(record.message(), record.data());
}

Bytes encodeAsSent(const KnownMessage& message, const uint8_t* record) {
  return message.isSentFixed() ? fixedBytes(*message.message, record)
                               : encodeCompact(message, record);
}

Bytes encodeAsSent(const OwnedRecord& record) {
  return encodeAsSent(record.message(), record.data());
}

Bytes encodeFixed(const KnownMessage& message, const uint8_t* record) {
  if (!message.isSentFixed()) {
    throw Failure(Cause::Usage, std::string(message.name) +
                                    " is sent in the compact arrangement and has no fixed one");
  }
  return fixedBytes(*message.message, record);
}

Bytes encodeFixed(const OwnedRecord& record) {
  return encodeFixed(record.message(), record.data());
}

uint64_t decodeInto(const KnownMessage& message, std::span<const uint8_t> bytes, uint8_t* record) {
  if (bytes.size() < 4 || bytes.size() > INT32_MAX) {
    return 0;
  }
  asked = 0;
  if (mesh::msg::decodeAny(module, *message.message, mesh::host::ByteOrder::Host, bytes.data(),
                           static_cast<uint32_t>(bytes.size()),
                           record) == mesh::msg::Outcome::ReleaseParts) {
    releaseParts(message.schema(), record);
  }
  if (asked > memoryLimit) {
    failForMemory("decoding this message", asked);
  }
  return asked;
}

OwnedRecord decode(const KnownMessage& message, std::span<const uint8_t> bytes) {
  OwnedRecord record(message);
  record.setUnpacked();
  decodeInto(message, bytes, record.data());
  return record;
}

bool encodesTo(const OwnedRecord& record, std::span<const uint8_t> bytes) {
  const mesh::msg::Message& message = *record.message().message;
  return (record.message().isSentFixed() &&
          std::ranges::equal(fixedBytes(message, record.data()), bytes)) ||
         (compactSize(message, record.data()) == bytes.size() &&
          std::ranges::equal(*compactBytes(message, record.data()), bytes));
}

}  // namespace inspect
