#include "zarnimesh/transport/frame.hpp"

#include <concepts>

namespace zarnimesh {
namespace {

constexpr uint32_t magic = 0x48534D5A;
constexpr uint16_t version = 1;

template <std::unsigned_integral Integer>
uint8_t* put(uint8_t* to, Integer value) {
  for (size_t i = 0; i < sizeof value; ++i) {
    to[i] = static_cast<uint8_t>(value >> (8 * i));
  }
  return to + sizeof value;
}

template <std::unsigned_integral Integer>
Integer get(const uint8_t* from) {
  uint64_t value = 0;
  for (size_t i = 0; i < sizeof(Integer); ++i) {
    value |= uint64_t{from[i]} << (8 * i);
  }
  return static_cast<Integer>(value);
}

}  // namespace

void encodeHeader(const FrameHeader& header, uint8_t* to) {
  to = put(to, magic);
  to = put(to, version);
  to = put(to, uint16_t{0});
  to = put(to, header.source);
  to = put(to, header.destination);
  to = put(to, header.incarnation);
  to = put(to, header.sequence);
  to = put(to, header.extra);
  to = put(to, header.count);
  to = put(to, uint32_t{0});
  put(to, header.payloadBytes);
}

void encodeIndexEntry(const IndexEntry& entry, uint8_t* to) {
  put(put(to, entry.id), entry.length);
}

std::optional<FrameHeader> decodeHeader(std::span<const uint8_t> bytes) {
  if (bytes.size() != headerSize) {
    return std::nullopt;
  }
  const uint8_t* from = bytes.data();
  const bool known = get<uint32_t>(from) == magic && get<uint16_t>(from + 4) == version &&
                     get<uint16_t>(from + 6) == 0 && get<uint32_t>(from + 44) == 0;
  const FrameHeader header{
      .source = get<uint32_t>(from + 8),
      .destination = get<uint32_t>(from + 12),
      .incarnation = get<uint64_t>(from + 16),
      .sequence = get<uint64_t>(from + 24),
      .extra = get<uint64_t>(from + 32),
      .count = get<uint32_t>(from + 40),
      .payloadBytes = get<uint64_t>(from + 48),
  };
  if (!known || header.sequence == 0) {
    return std::nullopt;
  }
  return header;
}

IndexEntry decodeIndexEntry(const uint8_t* from) {
  return {.id = get<uint32_t>(from), .length = get<uint32_t>(from + 4)};
}

bool lengthsAgree(const FrameHeader& header, std::span<const uint8_t> index, size_t payloadBytes) {
  if (index.size() != uint64_t{header.count} * indexEntrySize ||
      header.payloadBytes != payloadBytes) {
    return false;
  }
  // At most 2^32 lengths below 2^32: the sum cannot wrap.
  uint64_t sum = 0;
  for (size_t at = 0; at < index.size(); at += indexEntrySize) {
    sum += decodeIndexEntry(index.data() + at).length;
  }
  return sum == payloadBytes;
}

}  // namespace zarnimesh
