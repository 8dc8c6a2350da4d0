#include "codec.hpp"

#include <algorithm>

#include "failure.hpp"
#include "sent_table.hpp"
#include "table_reader.hpp"

namespace tool {
namespace {

[[noreturn]] void failEncoding(const OwnedRecord& record) {
  throw Failure(Exit::BadInput,
                "this " + std::string(record.message().name) + " is too large to be encoded");
}

// Whether a few bytes can ask for much memory.
bool hasVector(const mesh::wire::Record& record) {
  return std::ranges::any_of(record.slots, [](const mesh::wire::Slot& slot) {
    return slot.kind == mesh::wire::Kind::Vector;
  });
}

}  // namespace

Bytes encodeCompact(const OwnedRecord& record) {
  const Message& message = record.message();
  uint32_t length = UINT32_MAX;
  if (message.pack(record.data(), nullptr, &length) != 0) {
    failEncoding(record);
  }
  Bytes bytes(length);
  if (message.pack(record.data(), bytes.data(), &length) != 0) {
    failEncoding(record);
  }
  return bytes;
}

Bytes encodeAsSent(const OwnedRecord& record) {
  uint32_t result = 0;
  Bytes bytes = takeSent([&] { result = record.message().sendSingle(0, record.data(), 0); });
  if (result != 0) {
    failEncoding(record);
  }
  return bytes;
}

Bytes encodeFixed(const OwnedRecord& record) {
  if (!record.message().isSentFixed()) {
    throw Failure(Exit::Usage, std::string(record.message().name) +
                                   " is sent in the compact arrangement and has no fixed one");
  }
  return encodeAsSent(record);
}

OwnedRecord decode(const Message& message, std::span<const uint8_t> bytes) {
  OwnedRecord record(message);
  message.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), record.data());
  record.setUnpacked();
  return record;
}

bool isOwnEncoding(const Message& message, std::span<const uint8_t> bytes) {
  if (bytes.size() < 4 || bytes.size() > INT32_MAX ||
      (hasVector(message.record()) && readTable(message, bytes).memory > largestMemory)) {
    return false;
  }
  const OwnedRecord record = decode(message, bytes);
  const auto encodes = [&](const Bytes& encoded) { return std::ranges::equal(encoded, bytes); };
  return (message.isSentFixed() && encodes(encodeAsSent(record))) || encodes(encodeCompact(record));
}

}  // namespace tool
