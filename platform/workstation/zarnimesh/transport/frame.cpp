#include "zarnimesh/transport/frame.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstring>

namespace zarnimesh {
namespace {

constexpr uint32_t magic = 0x48534D5A;
constexpr uint16_t version = 2;

// The compiler makes one load or store of it only if it is a copy, not byte by byte.
template <std::unsigned_integral Integer>
Integer littleEndian(Integer value) {
  if constexpr (std::endian::native == std::endian::big) {
    auto bytes = std::bit_cast<std::array<uint8_t, sizeof value>>(value);
    std::reverse(bytes.begin(), bytes.end());
    value = std::bit_cast<Integer>(bytes);
  }
  return value;
}

template <std::unsigned_integral Integer>
uint8_t* put(uint8_t* to, Integer value) {
  value = littleEndian(value);
  std::memcpy(to, &value, sizeof value);
  return to + sizeof value;
}

template <std::unsigned_integral Integer>
Integer get(const uint8_t* from) {
  Integer value;
  std::memcpy(&value, from, sizeof value);
  return littleEndian(value);
}

}  // namespace

void encodeHeader(const FrameHeader& header, uint8_t* to) {
  to = put(to, magic);
  to = put(to, version);
  to = put(to, static_cast<uint8_t>(header.kind));
  to = put(to, header.flags);
  to = put(to, header.source);
  to = put(to, header.destination);
  to = put(to, header.incarnation);
  to = put(to, header.sequence);
  to = put(to, header.confirmed);
  to = put(to, header.extra);
  to = put(to, header.count);
  put(to, header.bytes);
}

void encodeIndexEntry(const IndexEntry& entry, uint8_t* to) {
  put(put(to, entry.id), entry.length);
}

void encodeFirst(uint64_t first, uint8_t* to) {
  put(to, first);
}

std::optional<FrameHeader> decodeHeader(std::span<const uint8_t> message) {
  if (message.size() < headerSize) {
    return std::nullopt;
  }
  const uint8_t* from = message.data();
  const FrameHeader header{
      .kind = Kind{from[6]},
      .flags = from[7],
      .source = get<uint32_t>(from + 8),
      .destination = get<uint32_t>(from + 12),
      .incarnation = get<uint64_t>(from + 16),
      .sequence = get<uint64_t>(from + 24),
      .confirmed = get<uint64_t>(from + 32),
      .extra = get<uint64_t>(from + 40),
      .count = get<uint32_t>(from + 48),
      .bytes = get<uint32_t>(from + 52),
  };
  if (get<uint32_t>(from) != magic || get<uint16_t>(from + 4) != version || header.flags > 1) {
    return std::nullopt;
  }
  return header;
}

IndexEntry decodeIndexEntry(const uint8_t* from) {
  return {.id = get<uint32_t>(from), .length = get<uint32_t>(from + 4)};
}

uint64_t decodeFirst(const uint8_t* from) {
  return get<uint64_t>(from);
}

bool lengthsAgree(const FrameHeader& header, std::span<const uint8_t> message) {
  const uint64_t indexBytes = uint64_t{header.count} * indexEntrySize;
  if (message.size() != headerSize + indexBytes + header.bytes) {
    return false;
  }
  // At most 2^32 lengths below 2^32: the sum cannot wrap.
  uint64_t sum = 0;
  for (uint64_t at = 0; at < indexBytes; at += indexEntrySize) {
    sum += decodeIndexEntry(message.data() + headerSize + at).length;
  }
  return sum == header.bytes;
}

}  // namespace zarnimesh
