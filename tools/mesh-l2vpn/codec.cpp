#include "codec.hpp"

#include <algorithm>
#include <optional>

#include "failure.hpp"
#include "sent_table.hpp"
#include "table_reader.hpp"

namespace tool {
namespace {

// Whether a few bytes can ask for much memory.
bool hasVector(const mesh::wire::Schema& schema) {
  return std::ranges::any_of(schema.slots, [](const mesh::wire::Slot& slot) {
    return slot.kind == mesh::wire::Kind::Vector;
  });
}

// How many bytes the compact arrangement takes; none where there is no encoding.
std::optional<uint32_t> compactSize(const OwnedRecord& record) {
  uint32_t size = UINT32_MAX;
  return record.message().pack(record.data(), nullptr, &size) == 0 ? std::optional(size)
                                                                   : std::nullopt;
}

std::optional<Bytes> compactBytes(const OwnedRecord& record) {
  auto size = compactSize(record);
  if (!size) {
    return std::nullopt;
  }
  Bytes bytes(*size);
  return record.message().pack(record.data(), bytes.data(), &*size) == 0
             ? std::optional(std::move(bytes))
             : std::nullopt;
}

std::optional<Bytes> sentBytes(const OwnedRecord& record) {
  uint32_t result = 0;
  Bytes bytes = takeSent([&] { result = record.message().sendSingle(0, record.data(), 0, 0); });
  return result == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

Bytes orFail(std::optional<Bytes> bytes, const OwnedRecord& record) {
  if (!bytes) {
    throw Failure(Exit::BadInput,
                  "this " + std::string(record.message().name) + " is too large to be encoded");
  }
  return std::move(*bytes);
}

}  // namespace

Bytes encodeCompact(const OwnedRecord& record) {
  return orFail(compactBytes(record), record);
}

Bytes encodeAsSent(const OwnedRecord& record) {
  return orFail(sentBytes(record), record);
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
      (hasVector(message.schema()) && judge(message, bytes).memory > largestMemory)) {
    return false;
  }
  // What a rejected message leaves may be a count without its items, which has no encoding.
  const OwnedRecord record = decode(message, bytes);
  const auto isEqual = [&](const std::optional<Bytes>& encoded) {
    return encoded && std::ranges::equal(*encoded, bytes);
  };
  return (message.isSentFixed() && isEqual(sentBytes(record))) ||
         (compactSize(record) == bytes.size() && isEqual(compactBytes(record)));
}

}  // namespace tool
