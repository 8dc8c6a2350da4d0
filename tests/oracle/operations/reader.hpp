// What receiving a buffer does: the record it leaves, the calls it makes on the way.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace oracle {

struct UnpackResult {
  uint32_t returned = 0;
  bool recordTouched = false;  // false: the record keeps whatever it held
  Value record;                // all zero when not touched
  std::vector<std::string> trace;
};

// <message>__unpack. `data` may be null and is read only within [data, data + length), byte by
// byte. Of the allocations of this call, the one numbered `failingAllocation` (from 1) returns
// null; 0 lets all succeed. Blocks are numbered from 1 in the order in which they were given.
UnpackResult unpack(const Description& message, const uint8_t* data, uint32_t length,
                    bool recordIsNull, bool reversed, int failingAllocation);

struct DecodeResult {
  bool decoded = false;
  Value record;  // as far as it was filled, on a record that was all zero
  std::vector<std::string> trace;
};

// The message's table reader, started at a given table position. It releases nothing on failure.
// Only a message whose tableReaderChecksParameters is set accepts null pointers and a length
// below 4; for the others such a call is a misuse.
DecodeResult decodeTable(const Description& message, const uint8_t* data, uint32_t length,
                         bool recordIsNull, uint32_t tablePosition, bool reversed,
                         int failingAllocation);

// <message>_free__unpacked of a record whose pointers carry block numbers: the trace it leaves.
std::vector<std::string> freeUnpacked(const Description& message, const Value& record);

// The same, and the record as it stands afterwards: every pointer null, lengths as they were.
std::vector<std::string> release(const Description& message, Value& record);

}  // namespace oracle
