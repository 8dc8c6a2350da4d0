// The verifying reader: a table in a received buffer becomes a record.
//
// Nothing is read before its place has been compared with the buffer's end. The buffer is hostile;
// the record and the schema are ours.
#pragma once

#include <utility>

#include "host/binding.hpp"
#include "host/memory.hpp"
#include "wire/buffer.hpp"
#include "wire/report.hpp"
#include "wire/schema.hpp"
#include "wire/text.hpp"

namespace mesh::wire {

enum class [[nodiscard]] Decoded : bool{
    No,
    Yes,
};

// Who decodes a table's slots: the message itself, at the root, or the record's table reader. They
// differ in their name and in one log text.
enum class Decoder {
  Root,
  Table,
};

template <const Record& record, Decoder decoder>
constexpr const char* decoderName() {
  return decoder == Decoder::Root ? nameText<record, "_unpack">()
                                  : nameText<record, "_unpack_non_root">();
}

// Verifies the frame of the table at `table`: its position, its vtable's position, its vtable's
// length. A failure is logged under `function`. The buffer is at least 4 bytes long.
template <host::ByteOrder order>
[[gnu::always_inline]] inline Decoded locateTable(host::serial_env& env, const char* function,
                                                  Buffer<order> buffer, uint32_t table,
                                                  TableFrame& frame) {
  const uint32_t largest = buffer.length - 4;
  if (table < 4 || table > largest) [[unlikely]] {
    reportTableOffset(env, function, table, buffer.length);
    return Decoded::No;
  }
  // Wraps at 32 bits by the format's own rule: a vtable behind its table is a negative distance.
  const uint32_t vtable = table - buffer.template read<uint32_t>(table);
  if (vtable < 4 || vtable > largest) [[unlikely]] {
    reportVtableOffset(env, function, table, largest);
    return Decoded::No;
  }
  const uint32_t length = buffer.template read<uint16_t>(vtable);
  if (!buffer.holds(vtable, length)) [[unlikely]] {
    reportVtableLength(env, function, length, buffer.length - vtable);
    return Decoded::No;
  }
  frame = {table, vtable, length};
  return Decoded::Yes;
}

// The table reader of a record: decodes the table at `table` into `into`, which the caller has
// cleared. On failure what was decoded stays, blocks included: releasing them is the caller's.
template <host::Module& module, const Record& record, host::ByteOrder order>
Decoded decodeTable(Buffer<order> buffer, uint8_t* into, uint32_t table);

namespace detail {

// The target of the offset word at `word`. Fails where the word is not inside the buffer or its
// target not within 32 bits; whether the target is inside is the caller's to see.
template <host::ByteOrder order>
[[gnu::always_inline]] inline Decoded followOffset(Buffer<order> buffer, Position word,
                                                   Position& target) {
  if (!buffer.holds(word, 4)) {
    return Decoded::No;
  }
  target = word + buffer.template read<uint32_t>(word);
  return target <= UINT32_MAX ? Decoded::Yes : Decoded::No;
}

// One block from the unpack allocator, or null with the decoder's log.
template <host::Module& module, const Record& record, Decoder decoder>
uint8_t* allocatePart(uint32_t size) {
  constexpr const char* function = decoderName<record, decoder>();
  void* const block = module.env.unpackAlloc(size, host::unpackOwner, function);
  if (block == nullptr) [[unlikely]] {
    if constexpr (decoder == Decoder::Root) {
      reportRootAllocation(module.env, function, size);
    } else {
      reportTableAllocation(module.env, function, size);
    }
  }
  return static_cast<uint8_t*>(block);
}

template <typename Scalar, host::ByteOrder order>
[[gnu::always_inline]] inline Decoded decodeScalar(Buffer<order> buffer, Position at,
                                                   uint8_t* field) {
  if (!buffer.holds(at, sizeof(Scalar))) [[unlikely]] {
    return Decoded::No;
  }
  host::store(field, buffer.template read<Scalar>(at));
  return Decoded::Yes;
}

// The length word and the contents of the byte string whose offset word is at `word`.
template <host::ByteOrder order>
[[gnu::always_inline]] inline Decoded locateBytes(Buffer<order> buffer, Position word,
                                                  Position& contents, uint32_t& length) {
  Position target = 0;
  if (followOffset(buffer, word, target) == Decoded::No || !buffer.holds(target, 4)) [[unlikely]] {
    return Decoded::No;
  }
  length = buffer.template read<uint32_t>(target);
  contents = target + 4;
  return buffer.holds(contents, length) ? Decoded::Yes : Decoded::No;
}

template <const Record& record, size_t index, host::ByteOrder order>
[[gnu::always_inline]] inline Decoded decodeArray(Buffer<order> buffer, Position at,
                                                  uint8_t* into) {
  constexpr const Slot& slot = record.slots[index];
  Position contents = 0;
  uint32_t length = 0;
  if (locateBytes(buffer, at, contents, length) == Decoded::No || length != slot.size)
      [[unlikely]] {
    return Decoded::No;
  }
  host::copyConstant<slot.size>(into + slot.recordOffset, buffer.data + contents);
  return Decoded::Yes;
}

template <host::Module& module, const Record& record, size_t index, Decoder decoder,
          host::ByteOrder order>
Decoded decodeBytes(Buffer<order> buffer, Position at, uint8_t* into) {
  constexpr const Slot& slot = record.slots[index];
  Position contents = 0;
  uint32_t length = 0;
  if (locateBytes(buffer, at, contents, length) == Decoded::No) [[unlikely]] {
    return Decoded::No;
  }
  host::store(into + slot.countOffset, length);
  if (length == 0) {
    return Decoded::Yes;
  }
  uint8_t* const block = allocatePart<module, record, decoder>(length);
  if (block == nullptr) [[unlikely]] {
    return Decoded::No;
  }
  host::storePointer(into + slot.recordOffset, block);
  host::copyBytes(block, buffer.data + contents, length);
  return Decoded::Yes;
}

template <host::Module& module, const Record& nested, host::ByteOrder order>
[[gnu::always_inline]] inline Decoded decodeNested(Buffer<order> buffer, Position at,
                                                   uint8_t* into) {
  Position table = 0;
  if (followOffset(buffer, at, table) == Decoded::No) [[unlikely]] {
    return Decoded::No;
  }
  return decodeTable<module, nested>(buffer, into, static_cast<uint32_t>(table));
}

// More items than this cannot have their offset words inside any buffer.
inline constexpr uint32_t largestVectorCount = 0x3FFFFFFF;

template <host::Module& module, const Record& record, size_t index, Decoder decoder,
          host::ByteOrder order>
Decoded decodeVector(Buffer<order> buffer, Position at, uint8_t* into) {
  constexpr const Slot& slot = record.slots[index];
  Position vector = 0;
  if (followOffset(buffer, at, vector) == Decoded::No || !buffer.holds(vector, 4)) {
    return Decoded::No;
  }
  const auto count = buffer.template read<uint32_t>(vector);
  const Position words = vector + 4;
  if (count > largestVectorCount || !buffer.holds(words, uint64_t{4} * count)) {
    return Decoded::No;
  }
  if (count == 0) {
    return Decoded::Yes;
  }
  const uint64_t size = uint64_t{slot.size} * count;
  if (size > UINT32_MAX) {
    return Decoded::No;
  }
  uint8_t* const items = allocatePart<module, record, decoder>(static_cast<uint32_t>(size));
  if (items == nullptr) [[unlikely]] {
    return Decoded::No;
  }
  host::clearBytes(items, size);
  host::store(into + slot.countOffset, count);
  host::storePointer(into + slot.recordOffset, items);
  for (uint32_t item = 0; item < count; ++item) {
    if (decodeNested<module, *slot.nested>(buffer, words + uint64_t{4} * item,
                                           items + uint64_t{slot.size} * item) == Decoded::No) {
      return Decoded::No;
    }
  }
  return Decoded::Yes;
}

// The value of one present slot, at `at`.
template <host::Module& module, const Record& record, size_t index, Decoder decoder,
          host::ByteOrder order>
[[gnu::always_inline]] inline Decoded decodeValue(Buffer<order> buffer, Position at,
                                                  uint8_t* into) {
  constexpr const Slot& slot = record.slots[index];
  uint8_t* const field = into + slot.recordOffset;
  if constexpr (slot.kind == Kind::U8) {
    return decodeScalar<uint8_t>(buffer, at, field);
  } else if constexpr (slot.kind == Kind::U16) {
    return decodeScalar<uint16_t>(buffer, at, field);
  } else if constexpr (slot.kind == Kind::U32) {
    return decodeScalar<uint32_t>(buffer, at, field);
  } else if constexpr (slot.kind == Kind::U64) {
    return decodeScalar<uint64_t>(buffer, at, field);
  } else if constexpr (slot.kind == Kind::Array) {
    return decodeArray<record, index>(buffer, at, into);
  } else if constexpr (slot.kind == Kind::Bytes) {
    return decodeBytes<module, record, index, decoder>(buffer, at, into);
  } else if constexpr (slot.kind == Kind::Vector) {
    return decodeVector<module, record, index, decoder>(buffer, at, into);
  } else {
    const Decoded nested = decodeNested<module, *slot.nested>(buffer, at, field);
    return record.style.nestedFailure == NestedFailure::IsIgnored ? Decoded::Yes : nested;
  }
}

enum class Step : uint8_t {
  Next,
  Finished,  // the vtable has no further slot
  Failed,
};

template <host::Module& module, const Record& record, size_t index, Decoder decoder,
          host::ByteOrder order>
[[gnu::always_inline]] inline Step decodeSlot(Buffer<order> buffer, const TableFrame& frame,
                                              uint8_t* into) {
  constexpr uint32_t entryOffset = 4 + 2 * index;
  if (frame.vtableLength < entryOffset + 2) {
    return Step::Finished;
  }
  const uint32_t entry = buffer.template read<uint16_t>(Position{frame.vtable} + entryOffset);
  if (entry == 0) {
    return Step::Next;
  }
  const Decoded decoded =
      decodeValue<module, record, index, decoder>(buffer, Position{frame.table} + entry, into);
  return decoded == Decoded::Yes ? Step::Next : Step::Failed;
}

}  // namespace detail

// Decodes a verified table's slots in slot order. What the table does not carry keeps the zero that
// the caller has stored. The first value that does not fit ends the decoding, unlogged.
template <host::Module& module, const Record& record, Decoder decoder, host::ByteOrder order>
Decoded decodeSlots(Buffer<order> buffer, const TableFrame& frame, uint8_t* into) {
  using detail::Step;
  Step step = Step::Next;
  [&]<size_t... index>(std::index_sequence<index...>) {
    static_cast<void>(
        ((step = detail::decodeSlot<module, record, index, decoder>(buffer, frame, into),
          step == Step::Next) &&
         ...));
  }
  (std::make_index_sequence<record.slots.size()>());
  return step == Step::Failed ? Decoded::No : Decoded::Yes;
}

template <host::Module& module, const Record& record, host::ByteOrder order>
Decoded decodeTable(Buffer<order> buffer, uint8_t* into, uint32_t table) {
  constexpr const char* function = decoderName<record, Decoder::Table>();
  if constexpr (record.style.checksParameters) {
    if (buffer.data == nullptr || static_cast<int32_t>(buffer.length) < 4 || into == nullptr) {
      reportUnpackParameters(module.env, function, buffer.data, buffer.length, into);
      return Decoded::No;
    }
  }
  TableFrame frame;
  if (locateTable(module.env, function, buffer, table, frame) == Decoded::No) [[unlikely]] {
    return Decoded::No;
  }
  return decodeSlots<module, record, Decoder::Table>(buffer, frame, into);
}

}  // namespace mesh::wire
