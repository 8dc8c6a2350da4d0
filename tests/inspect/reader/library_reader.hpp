// The library's reader, with which the explaining reader must agree, and checks for every reading.
#pragma once

#include "host/binding.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/table_reader.hpp"
#include "wire/slot_reader.hpp"

namespace inspect {

// Whether the library accepts the message.
inline bool libraryAccepts(const KnownMessage& message, std::span<const uint8_t> bytes) {
  static mesh::host::serial_env env;
  if (bytes.size() < 4) {
    return false;
  }
  using Buffer = mesh::wire::Buffer<mesh::host::ByteOrder::Host>;
  OwnedRecord record(message);
  const Buffer buffer{bytes.data(), static_cast<uint32_t>(bytes.size())};
  const bool isAccepted = mesh::wire::SlotReader(env, buffer)
                              .decodeTable(message.schema(), loadAs<uint32_t>(bytes.data()),
                                           record.data()) == mesh::wire::Decoded::Yes;
  record.setUnpacked();
  return isAccepted;
}

// What is wrong with a reading of any bytes: a byte without a meaning, a position past the end, a
// fault without a text. Empty if it is correct.
inline std::string unsoundness(const Reading& reading, std::span<const uint8_t> bytes) {
  uint64_t end = 0;
  for (const Range& range : reading.ranges) {
    if (range.at > end) {
      return "byte " + std::to_string(end) + " has no meaning";
    }
    end = std::max<uint64_t>(end, uint64_t{range.at} + range.size);
  }
  if (end != bytes.size()) {
    return std::to_string(end) + " bytes have a meaning, of " + std::to_string(bytes.size());
  }
  for (const Fault& fault : reading.faults) {
    if (fault.text.empty() || uint64_t{fault.at} + fault.size > bytes.size()) {
      return "a fault at byte " + std::to_string(fault.at) + " of " + std::to_string(bytes.size()) +
             ": '" + fault.text + "'";
    }
  }
  return "";
}

}  // namespace inspect
