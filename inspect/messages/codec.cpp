#include "inspect/messages/codec.hpp"

#include <algorithm>
#include <optional>

#include "inspect/bytes/failure.hpp"
#include "inspect/messages/sent_table.hpp"

namespace inspect {
namespace {

// The size of the compact arrangement; none if the record has no encoding.
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
                  "this " + std::string(record.message().name) + " is too large to encode");
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

OwnedRecord decode(const KnownMessage& message, std::span<const uint8_t> bytes) {
  OwnedRecord record(message);
  message.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), record.data());
  record.setUnpacked();
  return record;
}

bool encodesTo(const OwnedRecord& record, std::span<const uint8_t> bytes) {
  const auto isEqual = [&](const std::optional<Bytes>& encoded) {
    return encoded && std::ranges::equal(*encoded, bytes);
  };
  return (record.message().isSentFixed() && isEqual(sentBytes(record))) ||
         (compactSize(record) == bytes.size() && isEqual(compactBytes(record)));
}

}  // namespace inspect
