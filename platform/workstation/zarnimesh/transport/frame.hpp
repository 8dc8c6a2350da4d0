// What travels: one call is one multipart message of a header, an index and a payload.
//
//   header   56 bytes, below
//   index    for each table its identifier and its length, 8 bytes
//   payload  the tables, back to back
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
  uint64_t incarnation;  // of the sending node: drawn at random when it was opened
  uint64_t sequence;     // of the call, within the incarnation and the destination
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

// Nothing when the bytes are no header of this version.
std::optional<FrameHeader> decodeHeader(std::span<const uint8_t> bytes);
IndexEntry decodeIndexEntry(const uint8_t* from);

// Whether index and payload are as long as the header and the index itself say.
bool lengthsAgree(const FrameHeader& header, std::span<const uint8_t> index, size_t payloadBytes);

}  // namespace zarnimesh
