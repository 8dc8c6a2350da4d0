// The lines of a trace: one per call the library makes to the world outside, in order.
#pragma once

#include <cstdint>
#include <string>

namespace oracle {

// A block of 0 is the null pointer.
std::string unpackAllocLine(uint32_t size, const std::string& caller, uint32_t block);
std::string unpackFreeLine(uint32_t block, const std::string& caller);
std::string memAllocLine(uint32_t size, const std::string& caller, uint32_t block);
std::string memFreeLine(uint32_t block, const std::string& caller);
std::string sendMsgLine(uint32_t destination, uint32_t count);
std::string sendToMsgLine(uint32_t destination, uint32_t count, uint64_t extra);

// The log lines, by what they complain of.
std::string unpackParametersLine(const std::string& function, bool dataIsNull, uint32_t length,
                                 bool recordIsNull);
std::string packParametersLine(const std::string& function, bool bufferIsNull, uint32_t room,
                               bool recordIsNull);
std::string tableOffsetLine(const std::string& function, uint32_t tablePosition, uint32_t length);
std::string vtableOffsetLine(const std::string& function, uint32_t tablePosition, uint32_t length);
std::string vtableLengthLine(const std::string& function, uint32_t vtableLength, uint32_t left);
std::string rootAllocationFailedLine(const std::string& function, uint32_t size);
std::string tableAllocationFailedLine(const std::string& function, uint32_t size);

}  // namespace oracle
