// One received buffer on its way into one record: the checks and the reads of the table format.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace oracle {

// How a decoder words the failure of an allocation: the two texts differ in a run of blanks.
enum class Decoder { OfRoot, OfTable };

// Positions are 64-bit sums throughout, so no test can be fooled by a sum that wraps.
class Decoding {
 public:
  Decoding(const uint8_t* data, uint32_t length, bool reversed, int failingAllocation);

  uint64_t numberAt(uint64_t position, uint32_t width) const;

  // Where the vtable of a table is, once table position, vtable position and vtable length have
  // passed their tests; nothing, and a log line, if one of them fails.
  std::optional<uint64_t> vtableOf(uint64_t table, const std::string& function);

  // Fills the record slot by slot; false as soon as a field fails.
  bool decodeSlots(const Description& message, uint64_t table, uint64_t vtable,
                   const std::string& function, Decoder decoder, Value& record);

  // Both, as the table reader of the message.
  bool decodeTableAt(const Description& message, uint64_t table, Value& record);

  const std::vector<std::string>& trace() const { return trace_; }

 private:
  uint8_t byteAt(uint64_t position) const;
  bool fits(uint64_t position, uint64_t size) const;
  std::vector<uint8_t> contentsAt(uint64_t position, uint64_t size) const;

  // From an offset word to the length or count word it leads to, if both lie inside the buffer.
  std::optional<uint64_t> targetOf(uint64_t position) const;

  bool decodeField(const Description& message, const Field& field, uint64_t position,
                   const std::string& function, Decoder decoder, FieldValue& value);
  bool decodeArray(const Field& field, uint64_t position, FieldValue& value) const;
  bool decodeBytes(uint64_t position, const std::string& function, Decoder decoder,
                   FieldValue& value);
  bool decodeNested(const Field& field, uint64_t position, FieldValue& value);
  bool decodeVector(const Field& field, uint64_t position, const std::string& function,
                    Decoder decoder, FieldValue& value);

  // The number of the new block, or 0 and a log line when there is none to be had.
  uint32_t allocate(uint32_t size, const std::string& function, Decoder decoder);

  const uint8_t* data_;
  uint32_t length_;
  bool reversed_;
  int failingAllocation_;
  int allocations_ = 0;
  uint32_t blocks_ = 0;
  std::vector<std::string> trace_;
};

}  // namespace oracle
