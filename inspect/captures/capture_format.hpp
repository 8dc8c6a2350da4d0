// Numbers of the pcapng format.
#pragma once

#include <array>
#include <cstdint>

namespace inspect::pcapng {

inline constexpr uint32_t sectionHeader = 0x0A0D0D0A;
inline constexpr uint32_t interfaceDescription = 1;
inline constexpr uint32_t obsoletePacket = 2;
inline constexpr uint32_t simplePacket = 3;
inline constexpr uint32_t nameResolution = 4;
inline constexpr uint32_t interfaceStatistics = 5;
inline constexpr uint32_t enhancedPacket = 6;
inline constexpr uint32_t customBlock = 0xBAD;
inline constexpr uint32_t customBlockToCopy = 0x40000BAD;
// Of local use, as the highest bit says.
inline constexpr uint32_t schemaDescription = 0x80004D45;

inline constexpr uint32_t byteOrderMagic = 0x1A2B3C4D;
inline constexpr uint16_t majorVersion = 1;
inline constexpr uint16_t linkTypeUser0 = 147;

inline constexpr uint16_t userApplication = 4;      // of a section
inline constexpr uint16_t timestampResolution = 9;  // of an interface
inline constexpr uint16_t timestampOffset = 14;     // in seconds
inline constexpr uint16_t dropCount = 4;            // of a packet
inline constexpr uint16_t receivedPackets = 4;      // of statistics
inline constexpr uint16_t droppedPackets = 5;

// Before each table.
inline constexpr std::array<uint8_t, 4> tableMagic{'M', 'E', 'S', 'H'};
inline constexpr uint16_t tableVersion = 1;
inline constexpr uint16_t schemaVersion = 1;
inline constexpr uint16_t tableHeaderLength = 32;

// A table has at most 64 MiB by default.
inline constexpr uint32_t largestBlock = 256u << 20;

constexpr uint32_t padded(uint32_t length) {
  return (length + 3) / 4 * 4;
}

}  // namespace inspect::pcapng
