// What a message is, as plain data: its fields in slot order, its record, its identity.
//
// The oracle shares nothing with the library. Every number below is worked out here, by the
// rules a peer would follow, so that a slip in the library cannot repeat itself in its tests.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace oracle {

enum class Kind {
  U8,
  U16,
  U32,
  U64,
  Array,   // bytes[N], inline in the record
  Bytes,   // a length and a pointer
  Table,   // an inline sub-record
  Vector,  // a count and a pointer to consecutive records
};

bool isScalar(Kind kind);

inline constexpr uint64_t largestU32 = 0xFFFFFFFF;
inline constexpr uint32_t wordWidth = 4;  // of a table's or vector's offset, and of a count

uint32_t roundUp(uint32_t value, uint32_t step);

struct Description;

struct Field {
  std::string name;  // "f0", "f1", ... after the slot
  Kind kind = Kind::U8;
  uint32_t size = 0;  // width of a scalar, N of an Array, record size of the nested;
                      // 0 for Bytes
  const Description* nested = nullptr;  // Table and Vector
  uint32_t offset = 0;                  // of the value, or of the pointer, in the C record
  uint32_t lengthOffset = 0;            // of fN_len / fN_count, which precedes the pointer
};

struct Description {
  std::string name;
  std::string service;     // "l2vpn_cfg", "l2vpn_stat" or "l2vpn_sync"
  std::string hashedName;  // what the identifier is the hash of
  uint32_t id = 0;
  bool sentFixed = false;  // the senders transmit the fixed image
  bool ownRoot = false;    // __unpack decodes the root table itself
  bool slotOrder = false;  // compact inline part: strict slot order, else scalars before words
  bool wrapper = false;    // an _update or a _delete
  bool tableReaderChecksParameters = false;
  bool hasOutOfLineParts = false;  // Bytes or Vector, here or in a nested table
  uint64_t largestSize = 0;        // compact sizes above fail
  std::vector<Field> fields;
  uint32_t recordSize = 0;
  uint32_t alignment = 0;  // of the C record
  uint32_t vtableLength = 0;
};

// How many blocks a record can own: Bytes and Vectors, in nested tables too. Items own none.
uint32_t outOfLineParts(const Description& message);

// All, in the registration order of l2vpn_cfg, l2vpn_stat and l2vpn_sync.
const std::vector<Description>& descriptions();

// Ends the process with a clear text if there is no such message.
const Description& descriptionOf(std::string_view name);

// 32-bit FNV-1a.
uint32_t hashOf(const std::string& text);

// Says what is wrong and ends the process: for misuse of the oracle itself.
[[noreturn]] void misuse(const std::string& text);

}  // namespace oracle
