#include "codec.hpp"

#include "capture.hpp"
#include "failure.hpp"

namespace tool {
namespace {

[[noreturn]] void failEncoding(const OwnedRecord& record) {
  throw Failure(Exit::BadInput,
                "this " + std::string(record.message().name) + " is too large to be encoded");
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
  Bytes bytes = captureSent([&] { result = record.message().sendSingle(0, record.data(), 0); });
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

}  // namespace tool
