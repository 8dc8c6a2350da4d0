#include "inspect/messages/codec.hpp"

#include <algorithm>

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

bool isFixed(const KnownMessage& message, Form form) {
  return form == Form::Fixed || (form == Form::AsSent && message.isSentFixed());
}

}  // namespace

uint32_t encodedSize(const KnownMessage& message, const uint8_t* record, Form form) {
  if (isFixed(message, form)) {
    if (!message.isSentFixed()) {
      throw Failure(Cause::Usage, std::string(message.name) +
                                      " is sent in the compact arrangement and has no fixed one");
    }
    return mesh::wire::fixedLength(message.schema());
  }
  const uint32_t size = compactSize(*message.message, record);
  if (size == 0) {
    throw Failure(Cause::BadInput, "this " + std::string(message.name) + " is too large to encode");
  }
  return size;
}

void encodeInto(uint8_t* buffer, const KnownMessage& message, const uint8_t* record, Form form) {
  if (isFixed(message, form)) {
    mesh::wire::writeImageAtRunTime(message.schema(), buffer, record);
  } else {
    writeCompact(message.schema(), buffer, record);
  }
}

Bytes encode(const OwnedRecord& record, Form form, uint64_t taken) {
  const uint32_t size = encodedSize(record.message(), record.data(), form);
  if (taken + size > memoryLimit) {
    failForMemory("this message", taken + size);
  }
  Bytes bytes(size);
  encodeInto(bytes.data(), record.message(), record.data(), form);
  return bytes;
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
  const KnownMessage& message = record.message();
  return (message.isSentFixed() && std::ranges::equal(encodeFixed(record), bytes)) ||
         (compactSize(*message.message, record.data()) == bytes.size() &&
          std::ranges::equal(encodeCompact(record), bytes));
}

}  // namespace inspect
