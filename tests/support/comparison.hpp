// Holds the engine against the reference model: the same call on both, every result compared.
//
// Each function returns "" when the two agree, and otherwise what differs in words and bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/operations/sender.hpp"
#include "oracle/values/value.hpp"
#include "support/guarded_buffer.hpp"
#include "support/operations.hpp"

namespace harness {

// Puts a message's modules into one byte order, after their bindings have been made.
void useByteOrder(const Operations& operations, bool reversed);

// __unpack of the bytes (copied to a block that ends with them, or when `guarded` to the end of a
// page with an unreadable one behind it) and then _free__unpacked twice: record, result, logs,
// allocations, releases, leaks. `failingAllocation` (from 1) is refused; 0: none is.
std::string compareUnpack(const Operations& operations, std::span<const uint8_t> bytes,
                          bool reversed, int failingAllocation = 0, bool guarded = false);

// The same, with more choices.
struct Unpacking {
  bool reversed = false;
  int failingAllocation = 0;
  // Buffer and record lie against inaccessible pages; otherwise in blocks of their exact size.
  std::optional<GuardedBuffer::Edge> guard = std::nullopt;
  size_t recordShift = 0;  // from an aligned place, without a guard
  // The buffer is read where it lies: it is too large for a copy.
  bool inPlace = false;
  // Larger allocations fail.
  uint32_t largestBlock = UINT32_MAX;
};
std::string compareUnpack(const Operations& operations, std::span<const uint8_t> bytes,
                          const Unpacking& how);

// __pack into a buffer of exactly `room` bytes.
std::string comparePack(const Operations& operations, const oracle::Value& value, uint32_t room,
                        bool reversed);

// The same, with more choices.
struct Packing {
  uint32_t room = 0;
  bool reversed = false;
  bool recordIsNull = false;
  bool bufferIsNull = false;
  bool lengthIsNull = false;
  // How many bytes the buffer really has, where that is less than `room`.
  std::optional<uint32_t> block = std::nullopt;
  // Buffer and record lie against inaccessible pages; otherwise in blocks of their exact size.
  std::optional<GuardedBuffer::Edge> guard = std::nullopt;
  size_t bufferShift = 0;  // from an aligned place, without a guard
  size_t recordShift = 0;
};
std::string comparePack(const Operations& operations, const oracle::Value& value,
                        const Packing& how);

// One of the four send operations on the records.
std::string compareSend(const Operations& operations, oracle::Operation operation,
                        const std::vector<oracle::Value>& values, uint64_t extra, bool reversed,
                        bool allocationFails = false, uint32_t middlewareResult = 0);

// The same on a null pointer and `count` records.
struct Sending {
  oracle::Operation operation = oracle::Operation::Single;
  uint32_t count = 0;
  uint64_t extra = 0;
  bool reversed = false;
  bool allocationFails = false;
  uint32_t middlewareResult = 0;
};
std::string compareNullSend(const Operations& operations, const Sending& how);

// The compact message of a value, by the engine.
std::vector<uint8_t> packed(const Operations& operations, const oracle::Value& value,
                            bool reversed = false);

// The number of rounds a random test makes: as given, times the factor in the environment's
// MESH_TEST_ROUNDS, where a run asks for more or fewer.
int rounds(int usual);

}  // namespace harness
