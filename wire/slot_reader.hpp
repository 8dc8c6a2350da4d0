// The slot reader: a table in a received buffer becomes a record, slot by slot.
//
// It walks the schema at run time. It decides what is accepted, what is logged, what is allocated
// in which order, and what a rejected buffer leaves in the record. The quick readers only come to
// the same results faster. The buffer is hostile; the record and the schema are ours. Every place
// is compared with the buffer's end before it is read.
#pragma once

#include "host/binding.hpp"
#include "host/log.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

// A byte offset from the buffer's start. Sixty-four bits hold the sum of any two values that a
// buffer can state, so no sum of positions and lengths wraps before it is compared.
using Position = uint64_t;

// A byte string in the buffer.
struct Contents {
  const uint8_t* bytes;
  uint32_t length;
};

// A table's head: its position, its vtable's, and the vtable's length.
struct Head {
  uint32_t table;
  uint32_t vtable;
  uint32_t vtableLength;
};

// The first part of a head that does not lie inside the buffer. Later parts are not read.
enum class HeadFault : uint8_t {
  None,
  Table,
  Vtable,
  VtableLength,
};

// A received buffer of at least 4 bytes. By value: through a reference, the compiler must assume
// that stores into the record alias it.
template <host::ByteOrder order>
struct Buffer {
  const uint8_t* data;
  uint32_t length;

  // Whether `size` bytes from `at` on lie inside.
  [[nodiscard]] bool holds(Position at, uint64_t size) const { return at + size <= length; }

  // The caller has seen that the buffer holds them.
  template <typename Integer>
  [[nodiscard]] Integer read(Position at) const {
    return host::load<Integer, order>(data + at);
  }

  // The head of the table at `table`.
  HeadFault readHead(uint32_t table, Head& head) const {
    head = {table, 0, 0};
    const uint32_t largest = length - 4;
    if (table < 4 || table > largest) [[unlikely]] {
      return HeadFault::Table;
    }
    // Wraps at 32 bits by the format's own rule: a vtable behind its table is a negative distance.
    head.vtable = table - read<uint32_t>(table);
    if (head.vtable < 4 || head.vtable > largest) [[unlikely]] {
      return HeadFault::Vtable;
    }
    head.vtableLength = read<uint16_t>(head.vtable);
    return holds(head.vtable, head.vtableLength) ? HeadFault::None : HeadFault::VtableLength;
  }

  // The target of the offset word at `word`. The caller has checked that the word lies inside, and
  // checks the target. Fails where the target is not within 32 bits.
  bool follow(Position word, Position& target) const {
    target = word + read<uint32_t>(word);
    return target <= UINT32_MAX;
  }

  // The byte string of the offset word at `word`. The caller has checked that the word lies inside.
  // Fails where the length word or the contents do not.
  bool locateBytes(Position word, Contents& contents) const {
    const Position target = word + read<uint32_t>(word);
    if (!holds(target, 4)) [[unlikely]] {
      return false;
    }
    contents = {data + target + 4, read<uint32_t>(target)};
    return holds(target + 4, contents.length);
  }
};

using HostBuffer = Buffer<host::ByteOrder::Host>;

enum class [[nodiscard]] Decoded : bool{
    No,
    Yes,
};

// Who decodes a table's slots: the message itself, at the root, or the record's table reader. They
// differ in their name and in one log text.
enum class Decoder : bool {
  Root,
  Table,
};

// One block from the unpack allocator. Logs and returns null where the host refuses it.
[[gnu::noinline]] inline uint8_t* allocatePart(host::serial_env& env, const Schema& schema,
                                               Decoder decoder, uint32_t size) {
  const bool isRoot = decoder == Decoder::Root;
  const char* const function = isRoot ? schema.rootReader : schema.tableReader;
  void* const block = env.unpackAlloc(size, host::unpackOwner, function);
  if (block == nullptr) [[unlikely]] {
    (isRoot ? host::reportRootAllocation : host::reportTableAllocation)(env, function, size);
  }
  return static_cast<uint8_t*>(block);
}

// Stores a byte string that is not empty in the record: its length, and a copy in a block of its
// own. Fails where the host refuses the block; the length stays.
[[gnu::noinline]] inline Decoded takeBytes(host::serial_env& env, const Schema& schema,
                                           Decoder decoder, const Slot& slot, Contents contents,
                                           uint8_t* into) {
  host::store(into + slot.countOffset, contents.length);
  uint8_t* const block = allocatePart(env, schema, decoder, contents.length);
  if (block == nullptr) [[unlikely]] {
    return Decoded::No;
  }
  host::store(into + slot.recordOffset, block);
  host::copyBytes(block, contents.bytes, contents.length);
  return Decoded::Yes;
}

template <host::ByteOrder order>
class SlotReader {
 public:
  SlotReader(host::serial_env& env, Buffer<order> buffer) : env_(env), buffer_(buffer) {}

  // After a decoding that failed.
  void probeRejection(uint32_t id) const { fault_.probeRejection(id); }

  // Reads the head of the table at `table`. A fault is logged under `function`.
  Decoded locateTable(const char* function, uint32_t table, Head& head) const {
    switch (buffer_.readHead(table, head)) {
      case HeadFault::None:
        return Decoded::Yes;
      case HeadFault::Table:
        host::reportTableOffset(env_, function, table, buffer_.length);
        break;
      case HeadFault::Vtable:
        host::reportVtableOffset(env_, function, table, buffer_.length - 4);
        break;
      case HeadFault::VtableLength:
        host::reportVtableLength(env_, function, head.vtableLength, buffer_.length - head.vtable);
        break;
    }
    fault_.note(table);
    return Decoded::No;
  }

  // Decodes a located table's slots in slot order. Absent values keep the zeros that the caller has
  // stored. The first value that does not fit ends the decoding, unlogged. What was decoded stays,
  // blocks included; the caller releases them.
  Decoded decodeSlots(const Schema& schema, Decoder decoder, const Head& head,
                      uint8_t* into) const {
    Position entryAt = Position{head.vtable} + 4;
    const Position end = Position{head.vtable} + head.vtableLength;
    for (const Slot& slot : schema.slots) {
      if (entryAt + 2 > end) {
        break;
      }
      const uint32_t entry = buffer_.template read<uint16_t>(entryAt);
      if (entry != 0 &&
          decodeValue(schema, decoder, slot, Position{head.table} + entry, into) == Decoded::No) {
        if (slot.kind != Kind::Table ||
            schema.style.nestedFailure == NestedFailure::FailsTheTable) {
          fault_.note(Position{head.table} + entry, &slot - schema.slots.data());
          return Decoded::No;
        }
        fault_.forget();
      }
      entryAt += 2;
    }
    return Decoded::Yes;
  }

  // The table reader of a record: locates the table at `table`, and decodes its slots into `into`,
  // which the caller has cleared.
  [[gnu::noinline]] Decoded decodeTable(const Schema& schema, uint32_t table, uint8_t* into) const {
    if (schema.style.checksParameters &&
        (buffer_.data == nullptr || static_cast<int32_t>(buffer_.length) < 4 || into == nullptr)) {
      host::reportUnpackParameters(env_, schema.tableReader, buffer_.data, buffer_.length, into);
      return Decoded::No;
    }
    Head head;
    if (locateTable(schema.tableReader, table, head) == Decoded::No) {
      return Decoded::No;
    }
    return decodeSlots(schema, Decoder::Table, head, into);
  }

 private:
  // The value of one present slot, at `at`.
  Decoded decodeValue(const Schema& schema, Decoder decoder, const Slot& slot, Position at,
                      uint8_t* into) const {
    if (!buffer_.holds(at, footprint(slot))) {
      return Decoded::No;
    }
    uint8_t* const field = into + slot.recordOffset;
    switch (slot.kind) {
      case Kind::Scalar:
        host::copyInteger<order>(field, buffer_.data + at, slot.size);
        return Decoded::Yes;
      case Kind::Array:
      case Kind::Bytes: {
        Contents contents{};
        if (!buffer_.locateBytes(at, contents)) {
          return Decoded::No;
        }
        if (slot.kind == Kind::Bytes) {
          return contents.length == 0 ? Decoded::Yes
                                      : takeBytes(env_, schema, decoder, slot, contents, into);
        }
        if (contents.length != slot.size) {
          return Decoded::No;
        }
        host::copyArray(field, contents.bytes, slot.size);
        return Decoded::Yes;
      }
      case Kind::Table:
        return decodeNested(*slot.nested, at, field);
      case Kind::Vector:
        return decodeVector(schema, decoder, slot, at, into);
    }
    return Decoded::No;
  }

  // The table that the offset word at `word` leads to.
  Decoded decodeNested(const Schema& nested, Position word, uint8_t* into) const {
    Position table = 0;
    return buffer_.follow(word, table) ? decodeTable(nested, static_cast<uint32_t>(table), into)
                                       : Decoded::No;
  }

  Decoded decodeVector(const Schema& schema, Decoder decoder, const Slot& slot, Position word,
                       uint8_t* into) const {
    Position vector = 0;
    if (!buffer_.follow(word, vector) || !buffer_.holds(vector, 4)) {
      return Decoded::No;
    }
    const auto count = buffer_.template read<uint32_t>(vector);
    const Position words = vector + 4;
    const uint64_t size = uint64_t{slot.size} * count;
    if (!buffer_.holds(words, uint64_t{4} * count) || size > UINT32_MAX) {
      return Decoded::No;
    }
    if (count == 0) {
      return Decoded::Yes;
    }
    uint8_t* const items = allocatePart(env_, schema, decoder, static_cast<uint32_t>(size));
    if (items == nullptr) {
      return Decoded::No;
    }
    host::clearBytes(items, size);
    host::store(into + slot.countOffset, count);
    host::store(into + slot.recordOffset, items);
    for (uint32_t item = 0; item < count; ++item) {
      if (decodeNested(*slot.nested, words + uint64_t{4} * item,
                       items + uint64_t{slot.size} * item) == Decoded::No) {
        return Decoded::No;
      }
    }
    return Decoded::Yes;
  }

  host::serial_env& env_;
  const Buffer<order> buffer_;
  [[no_unique_address]] mutable host::FaultPlace fault_;
};

}  // namespace mesh::wire
