// The wire format: one call, or one word about calls, is one ZeroMQ message of one part.
//
//   header   56 bytes, below
//   Call     index, 8 bytes for each table: identifier and length; then the tables, without gaps
//   State    u64: sequence of the first call that this receiver knows of
//
// All integers are little-endian.
//
//   0  u32 magic "ZMSH"     16 u64 incarnation        40 u64 extra
//   4  u16 version, 2       24 u64 sequence           48 u32 count
//   6  u8  kind             32 u64 confirmed          52 u32 bytes
//   7  u8  flags            8  u32 source             12 u32 destination
//
// A sender sends Call and Sync, the receiver answers with State over the same connection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zarnimesh {

inline constexpr size_t headerSize = 56;
inline constexpr size_t indexEntrySize = 8;
inline constexpr size_t stateSize = headerSize + sizeof(uint64_t);

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
                             // State: of the latest call that was delivered
  uint64_t extra = 0;        // Call: from MESH_SendToMsg. State: calls that are missing.
                             // Sync with a count: calls that the receiver's predecessors lost
  uint32_t count = 0;        // Call: tables. State: calls that may be unconfirmed. Sync: 0 or 1
  uint32_t bytes = 0;        // Call: of all tables. State: of unconfirmed calls
};

struct IndexEntry {
  uint32_t id;
  uint32_t length;
};

void encodeHeader(const FrameHeader& header, uint8_t* to);
void encodeIndexEntry(const IndexEntry& entry, uint8_t* to);
void encodeFirst(uint64_t first, uint8_t* to);

// Nothing when the bytes do not begin with a header of this version.
std::optional<FrameHeader> decodeHeader(std::span<const uint8_t> message);
IndexEntry decodeIndexEntry(const uint8_t* from);
uint64_t decodeFirst(const uint8_t* from);

// Whether a Call has the length that its header states, and its tables fill it.
bool lengthsAgree(const FrameHeader& header, std::span<const uint8_t> message);

}  // namespace zarnimesh
