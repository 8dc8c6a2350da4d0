// Small messages that cost a reader much: lists whose items share tables or contents.
#pragma once

#include "inspect/messages/codec.hpp"

namespace inspect {

// Appends integers in wire format.
template <typename Integer>
void put(Bytes& bytes, Integer value) {
  bytes.resize(bytes.size() + sizeof value);
  storeAs(bytes.data() + bytes.size() - sizeof value, value);
}

template <typename Integer>
void putAll(Bytes& bytes, std::initializer_list<Integer> values) {
  for (const Integer value : values) {
    put(bytes, value);
  }
}

inline const KnownMessage& list() {
  return messageNamed("l2vpn_cfg_query_dfx_rec");
}

// That message up to the count of its list.
inline Bytes listOf(uint32_t count) {
  Bytes bytes;
  put<uint32_t>(bytes, 12);
  putAll<uint16_t>(bytes, {8, 8, 0, 4});
  putAll<uint32_t>(bytes, {8, 4, count});
  return bytes;
}

// One table per item, and one shared vtable of `length` bytes, zero except for the length.
inline Bytes itemsOfOneVtable(uint32_t items, uint16_t length) {
  Bytes bytes = listOf(items);
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, 4 * items);
  }
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, 4 * item - 4 * items);
  }
  put(bytes, length);
  bytes.resize(bytes.size() + length - sizeof length);
  return bytes;
}

// f0 of every item points to the same contents, which are too long for it.
inline Bytes itemsOfOneText(uint32_t items, uint32_t size, uint8_t byte) {
  Bytes bytes = listOf(items);
  const uint32_t vtable = static_cast<uint32_t>(bytes.size()) + 4 * items;
  const uint32_t tables = vtable + 8;
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, tables + 4 * item - static_cast<uint32_t>(bytes.size()));
  }
  putAll<uint16_t>(bytes, {6, 4, static_cast<uint16_t>(4 * items), 0});
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, 8 + 4 * item);
  }
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, 4 * (items - item));
  }
  put(bytes, size);
  bytes.resize(bytes.size() + size, byte);
  return bytes;
}

// Every other item has the same f4; the others have no slot.
inline Bytes itemsOfOneTextInTurn(uint32_t items) {
  constexpr uint32_t size = 16'384;
  Bytes bytes = listOf(items);
  const uint32_t full = static_cast<uint32_t>(bytes.size()) + 4 * items;
  const uint32_t tables = full + 16;
  const uint32_t empty = tables + 8 * items + 4 + size;
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, 4 * items + 16);
  }
  putAll<uint16_t>(bytes, {14, 4, 0, 0, 0, 0, static_cast<uint16_t>(4 * items), 0});
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, tables + 4 * item - (item % 2 == 0 ? full : empty));
  }
  for (uint32_t item = 0; item < items; ++item) {
    put<uint32_t>(bytes, 4 * (items - item));
  }
  put(bytes, size);
  bytes.resize(bytes.size() + size - 1, 'a');
  put<uint8_t>(bytes, 'b');
  putAll<uint16_t>(bytes, {4, 0});
  return bytes;
}

}  // namespace inspect
