// The wire format: one call is one multipart message of header, index and payload.
//
//   header   56 bytes, below
//   index    8 bytes for each table: identifier and length
//   payload  the tables, without gaps
//
// All integers are little-endian.
//
//   0  u32 magic "ZMSH"     16 u64 incarnation        40 u32 count of tables
//   4  u16 version, 1       24 u64 sequence, from 1   44 u32 0
//   6  u16 flags, 0         32 u64 extra              48 u64 bytes of the payload
//   8  u32 source
//  12  u32 destination
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zarnimesh {

inline constexpr size_t headerSize = 56;
inline constexpr size_t indexEntrySize = 8;
inline constexpr size_t partCount = 3;

struct FrameHeader {
  uint32_t source;
  uint32_t destination;
  uint64_t incarnation;  // random number of the sending node, new at each open
  uint64_t sequence;     // of the call, for this incarnation and destination
  uint64_t extra;
  uint32_t count;
  uint64_t payloadBytes;
};

struct IndexEntry {
  uint32_t id;
  uint32_t length;
};

void encodeHeader(const FrameHeader& header, uint8_t* to);
void encodeIndexEntry(const IndexEntry& entry, uint8_t* to);

// Nothing when the bytes are not a header of this version.
std::optional<FrameHeader> decodeHeader(std::span<const uint8_t> bytes);
IndexEntry decodeIndexEntry(const uint8_t* from);

// Whether the lengths of index and payload match the header, and the tables fill the payload.
bool lengthsAgree(const FrameHeader& header, std::span<const uint8_t> index, size_t payloadBytes);

}  // namespace zarnimesh
