// The wire format: one call, or one word about calls, is one ZeroMQ message of one part.
//
//   header   56 bytes, below
//   Call     index, 8 bytes for each table: identifier and length; then the tables, without gaps
//   State    three u64, see StateBody
//
// All integers are little-endian.
//
//   0  u32 magic "ZMSH"     16 u64 incarnation        40 u64 extra
//   4  u16 version, 5       24 u64 sequence           48 u32 count
//   6  u8  kind             32 u64 confirmed          52 u32 bytes
//   7  u8  flags            8  u32 source             12 u32 destination
//
// A sender sends Call and Sync, the receiver answers with State over the same connection.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace zarnimesh {

inline constexpr size_t headerSize = 56;
inline constexpr size_t indexEntrySize = 8;
inline constexpr size_t stateSize = headerSize + 3 * sizeof(uint64_t);

enum class Kind : uint8_t {
  Call,
  Sync,   // "so many calls are numbered: which arrived?"
  State,  // what arrived, and how much more may be sent
};

// The flag of a Call: its delivery is to be answered with a State.
inline constexpr uint8_t tellFlag = 1;
// The flag of a Sync: no call follows. Of a State: such a Sync arrived.
inline constexpr uint8_t closingFlag = 1;

struct FrameHeader {
  Kind kind = Kind::Call;
  uint8_t flags = 0;
  uint32_t source = 0;
  uint32_t destination = 0;
  uint64_t incarnation = 0;  // random number of the node that sends this, new at each open
  uint64_t sequence = 0;     // Call: its number, from 1. Sync: of the latest call, or 0.
                             // State: of the latest call that arrived
  uint64_t confirmed = 0;    // Call, Sync: of the latest call that is known to be delivered.
                             // State: delivered or missing are all up to this one
  uint64_t extra = 0;        // Call: from MESH_SendToMsg. State: calls up to `confirmed` that are
                             // missing.
                             // Sync: calls that the predecessors of the receiver in `count` lost
  uint32_t count = 0;        // Call: tables. State: calls that may be unconfirmed.
                             // Sync: low 32 bits of the incarnation of the receiver that
                             // answered last, or 0
  uint32_t bytes = 0;        // Call: of all tables. State: of unconfirmed calls
};

struct StateBody {
  uint64_t first;         // sequence of the first call that this receiver knows of
  uint64_t missingAhead;  // calls that are missing, between `confirmed` and `sequence`
  uint64_t missedBefore;  // calls before `first` that neither it nor its predecessors confirmed, as
                          // far as the sender has told
};

struct IndexEntry {
  uint32_t id;
  uint32_t length;
};

namespace frame {

inline constexpr uint32_t magic = 0x48534D5A;
inline constexpr uint16_t version = 5;

// The compiler makes one load or store of it only if it is a copy, not byte by byte.
template <std::unsigned_integral Integer>
Integer littleEndian(Integer value) {
  if constexpr (std::endian::native == std::endian::big) {
    auto bytes = std::bit_cast<std::array<uint8_t, sizeof value>>(value);
    std::reverse(bytes.begin(), bytes.end());
    value = std::bit_cast<Integer>(bytes);
  }
  return value;
}

template <std::unsigned_integral Integer>
uint8_t* put(uint8_t* to, Integer value) {
  value = littleEndian(value);
  std::memcpy(to, &value, sizeof value);
  return to + sizeof value;
}

template <std::unsigned_integral Integer>
Integer get(const uint8_t* from) {
  Integer value;
  std::memcpy(&value, from, sizeof value);
  return littleEndian(value);
}

}  // namespace frame

inline void encodeHeader(const FrameHeader& header, uint8_t* to) {
  using frame::put;
  to = put(to, frame::magic);
  to = put(to, frame::version);
  to = put(to, static_cast<uint8_t>(header.kind));
  to = put(to, header.flags);
  to = put(to, header.source);
  to = put(to, header.destination);
  to = put(to, header.incarnation);
  to = put(to, header.sequence);
  to = put(to, header.confirmed);
  to = put(to, header.extra);
  to = put(to, header.count);
  put(to, header.bytes);
}

inline void encodeIndexEntry(const IndexEntry& entry, uint8_t* to) {
  frame::put(frame::put(to, entry.id), entry.length);
}

inline void encodeStateBody(const StateBody& body, uint8_t* to) {
  to = frame::put(to, body.first);
  to = frame::put(to, body.missingAhead);
  frame::put(to, body.missedBefore);
}

// Nothing when the bytes do not begin with a header of this version.
inline std::optional<FrameHeader> decodeHeader(std::span<const uint8_t> message) {
  using frame::get;
  if (message.size() < headerSize) {
    return std::nullopt;
  }
  const uint8_t* from = message.data();
  const FrameHeader header{
      .kind = Kind{from[6]},
      .flags = from[7],
      .source = get<uint32_t>(from + 8),
      .destination = get<uint32_t>(from + 12),
      .incarnation = get<uint64_t>(from + 16),
      .sequence = get<uint64_t>(from + 24),
      .confirmed = get<uint64_t>(from + 32),
      .extra = get<uint64_t>(from + 40),
      .count = get<uint32_t>(from + 48),
      .bytes = get<uint32_t>(from + 52),
  };
  if (get<uint32_t>(from) != frame::magic || get<uint16_t>(from + 4) != frame::version ||
      header.flags > 1) {
    return std::nullopt;
  }
  return header;
}

inline IndexEntry decodeIndexEntry(const uint8_t* from) {
  return {.id = frame::get<uint32_t>(from), .length = frame::get<uint32_t>(from + 4)};
}

inline StateBody decodeStateBody(const uint8_t* from) {
  return {.first = frame::get<uint64_t>(from),
          .missingAhead = frame::get<uint64_t>(from + 8),
          .missedBefore = frame::get<uint64_t>(from + 16)};
}

// Whether a Call has the length that its header states, and its tables fill it.
inline bool lengthsAgree(const FrameHeader& header, std::span<const uint8_t> message) {
  const uint64_t indexBytes = uint64_t{header.count} * indexEntrySize;
  if (message.size() != headerSize + indexBytes + header.bytes) {
    return false;
  }
  // At most 2^32 lengths below 2^32: the sum cannot wrap.
  uint64_t sum = 0;
  for (uint64_t at = 0; at < indexBytes; at += indexEntrySize) {
    sum += decodeIndexEntry(message.data() + headerSize + at).length;
  }
  return sum == header.bytes;
}

}  // namespace zarnimesh
