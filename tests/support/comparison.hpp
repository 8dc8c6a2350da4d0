// Holds the engine against the reference model: the same call on both, every result compared.
//
// Each function returns "" when the two agree, and otherwise what differs in words and bytes.
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "model/message.hpp"
#include "model/sender.hpp"
#include "model/value.hpp"
#include "support/operations.hpp"

namespace harness {

// Puts a message's modules into one byte order, after their bindings have been made.
void useByteOrder(const Operations& operations, bool reversed);

// __unpack of the bytes (copied to a block that ends with them, or when `guarded` to the end of a
// page with an unreadable one behind it) and then _free__unpacked twice: record, result, logs,
// allocations, releases, leaks. `failingAllocation` (from 1) is refused; 0: none is.
std::string compareUnpack(const Operations& operations, std::span<const uint8_t> bytes,
                          bool reversed, int failingAllocation = 0, bool guarded = false);

// __pack into a buffer of exactly `room` bytes.
std::string comparePack(const Operations& operations, const model::Value& value, uint32_t room,
                        bool reversed);

// One of the four send operations on the records.
std::string compareSend(const Operations& operations, model::Operation operation,
                        const std::vector<model::Value>& values, uint64_t extra, bool reversed,
                        bool allocationFails = false, uint32_t middlewareResult = 0);

// The compact message of a value, by the engine.
std::vector<uint8_t> packed(const Operations& operations, const model::Value& value,
                            bool reversed = false);

// The number of rounds a random test makes: as given, times the factor in the environment's
// MESH_TEST_ROUNDS, where a run asks for more or fewer.
int rounds(int usual);

}  // namespace harness
