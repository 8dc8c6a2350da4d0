#include "wire/reader.hpp"

#include "host/memory.hpp"
#include "wire/report.hpp"

namespace mesh::wire {
namespace {

// More items than this cannot have their offset words inside any buffer.
constexpr uint32_t largestVectorCount = 0x3FFFFFFF;

// One block from the unpack allocator, or null with the decoder's log.
uint8_t* allocatePart(host::serial_env& env, const Schema& schema, Decoder decoder, uint32_t size) {
  const bool isRoot = decoder == Decoder::Root;
  const char* const function = isRoot ? schema.rootReader : schema.tableReader;
  void* const block = env.unpackAlloc(size, host::unpackOwner, function);
  if (block == nullptr) [[unlikely]] {
    (isRoot ? reportRootAllocation : reportTableAllocation)(env, function, size);
  }
  return static_cast<uint8_t*>(block);
}

// One table's slots on their way into one record.
template <host::ByteOrder order>
class SlotReader {
 public:
  SlotReader(host::serial_env& env, const Schema& schema, Decoder decoder, Buffer<order> buffer,
             uint8_t* into)
      : env_(env), schema_(schema), decoder_(decoder), buffer_(buffer), into_(into) {}

  Decoded readAll(const TableFrame& frame) {
    Position entryAt = Position{frame.vtable} + 4;
    const Position end = Position{frame.vtable} + frame.vtableLength;
    for (const Slot& slot : schema_.slots) {
      if (entryAt + 2 > end) {
        break;
      }
      const uint32_t entry = buffer_.template read<uint16_t>(entryAt);
      if (entry != 0 && read(slot, Position{frame.table} + entry) == Decoded::No) {
        return Decoded::No;
      }
      entryAt += 2;
    }
    return Decoded::Yes;
  }

 private:
  // The value of one present slot, at `at`.
  Decoded read(const Slot& slot, Position at) {
    uint8_t* const field = into_ + slot.recordOffset;
    switch (slot.kind) {
      case Kind::U8:
        return readScalar<uint8_t>(at, field);
      case Kind::U16:
        return readScalar<uint16_t>(at, field);
      case Kind::U32:
        return readScalar<uint32_t>(at, field);
      case Kind::U64:
        return readScalar<uint64_t>(at, field);
      case Kind::Array:
        return readArray(slot, at, field);
      case Kind::Bytes:
        return readBytes(slot, at);
      case Kind::Vector:
        return readVector(slot, at);
      case Kind::Table: {
        const Decoded nested = readTable(*slot.nested, at, field);
        return schema_.style.nestedFailure == NestedFailure::IsIgnored ? Decoded::Yes : nested;
      }
    }
    return Decoded::No;
  }

  template <typename Scalar>
  Decoded readScalar(Position at, uint8_t* field) {
    if (!buffer_.holds(at, sizeof(Scalar))) {
      return Decoded::No;
    }
    host::store(field, buffer_.template read<Scalar>(at));
    return Decoded::Yes;
  }

  // The target of the offset word at `word`. Fails where the word is not inside the buffer or its
  // target not within 32 bits; whether the target is inside is the caller's to see.
  Decoded follow(Position word, Position& target) {
    if (!buffer_.holds(word, 4)) {
      return Decoded::No;
    }
    target = word + buffer_.template read<uint32_t>(word);
    return target <= UINT32_MAX ? Decoded::Yes : Decoded::No;
  }

  // The length word and the contents of the byte string whose offset word is at `word`.
  Decoded locateBytes(Position word, Contents& contents) {
    Position target = 0;
    if (follow(word, target) == Decoded::No || !buffer_.holds(target, 4)) {
      return Decoded::No;
    }
    contents = {buffer_.data + target + 4, buffer_.template read<uint32_t>(target)};
    return buffer_.holds(target + 4, contents.length) ? Decoded::Yes : Decoded::No;
  }

  Decoded readArray(const Slot& slot, Position word, uint8_t* field) {
    Contents contents{};
    if (locateBytes(word, contents) == Decoded::No || contents.length != slot.size) {
      return Decoded::No;
    }
    host::copyArray(field, contents.bytes, slot.size);
    return Decoded::Yes;
  }

  Decoded readBytes(const Slot& slot, Position word) {
    Contents contents{};
    if (locateBytes(word, contents) == Decoded::No) {
      return Decoded::No;
    }
    return contents.length == 0 ? Decoded::Yes
                                : takeBytes(env_, schema_, decoder_, slot, contents, into_);
  }

  Decoded readTable(const Schema& nested, Position word, uint8_t* field) {
    Position table = 0;
    if (follow(word, table) == Decoded::No) {
      return Decoded::No;
    }
    return decodeTable(env_, nested, buffer_, field, static_cast<uint32_t>(table));
  }

  Decoded readVector(const Slot& slot, Position word) {
    Position vector = 0;
    if (follow(word, vector) == Decoded::No || !buffer_.holds(vector, 4)) {
      return Decoded::No;
    }
    const auto count = buffer_.template read<uint32_t>(vector);
    const Position words = vector + 4;
    if (count > largestVectorCount || !buffer_.holds(words, uint64_t{4} * count)) {
      return Decoded::No;
    }
    if (count == 0) {
      return Decoded::Yes;
    }
    const uint64_t size = uint64_t{slot.size} * count;
    if (size > UINT32_MAX) {
      return Decoded::No;
    }
    uint8_t* const items = allocatePart(env_, schema_, decoder_, static_cast<uint32_t>(size));
    if (items == nullptr) {
      return Decoded::No;
    }
    host::clearBytes(items, size);
    host::store(into_ + slot.countOffset, count);
    host::storePointer(into_ + slot.recordOffset, items);
    for (uint32_t item = 0; item < count; ++item) {
      if (readTable(*slot.nested, words + uint64_t{4} * item, items + uint64_t{slot.size} * item) ==
          Decoded::No) {
        return Decoded::No;
      }
    }
    return Decoded::Yes;
  }

  host::serial_env& env_;
  const Schema& schema_;
  const Decoder decoder_;
  const Buffer<order> buffer_;
  uint8_t* const into_;
};

}  // namespace

template <host::ByteOrder order>
Decoded locateTable(host::serial_env& env, const char* function, Buffer<order> buffer,
                    uint32_t table, TableFrame& frame) {
  switch (readFrame(buffer, table, frame)) {
    case FrameFault::None:
      return Decoded::Yes;
    case FrameFault::Table:
      reportTableOffset(env, function, table, buffer.length);
      break;
    case FrameFault::Vtable:
      reportVtableOffset(env, function, table, buffer.length - 4);
      break;
    case FrameFault::VtableLength:
      reportVtableLength(env, function, frame.vtableLength, buffer.length - frame.vtable);
      break;
  }
  return Decoded::No;
}

template <host::ByteOrder order>
Decoded decodeSlots(host::serial_env& env, const Schema& schema, Decoder decoder,
                    Buffer<order> buffer, const TableFrame& frame, uint8_t* into) {
  return SlotReader<order>(env, schema, decoder, buffer, into).readAll(frame);
}

template <host::ByteOrder order>
Decoded decodeTable(host::serial_env& env, const Schema& schema, Buffer<order> buffer,
                    uint8_t* into, uint32_t table) {
  if (schema.style.checksParameters &&
      (buffer.data == nullptr || static_cast<int32_t>(buffer.length) < 4 || into == nullptr)) {
    reportUnpackParameters(env, schema.tableReader, buffer.data, buffer.length, into);
    return Decoded::No;
  }
  TableFrame frame;
  if (locateTable(env, schema.tableReader, buffer, table, frame) == Decoded::No) {
    return Decoded::No;
  }
  return decodeSlots(env, schema, Decoder::Table, buffer, frame, into);
}

Decoded takeBytes(host::serial_env& env, const Schema& schema, Decoder decoder, const Slot& slot,
                  Contents contents, uint8_t* into) {
  host::store(into + slot.countOffset, contents.length);
  uint8_t* const block = allocatePart(env, schema, decoder, contents.length);
  if (block == nullptr) [[unlikely]] {
    return Decoded::No;
  }
  host::storePointer(into + slot.recordOffset, block);
  host::copyBytes(block, contents.bytes, contents.length);
  return Decoded::Yes;
}

using host::ByteOrder;

template Decoded locateTable(host::serial_env&, const char*, Buffer<ByteOrder::Host>, uint32_t,
                             TableFrame&);
template Decoded locateTable(host::serial_env&, const char*, Buffer<ByteOrder::Reversed>, uint32_t,
                             TableFrame&);
template Decoded decodeSlots(host::serial_env&, const Schema&, Decoder, Buffer<ByteOrder::Host>,
                             const TableFrame&, uint8_t*);
template Decoded decodeSlots(host::serial_env&, const Schema&, Decoder, Buffer<ByteOrder::Reversed>,
                             const TableFrame&, uint8_t*);
template Decoded decodeTable(host::serial_env&, const Schema&, Buffer<ByteOrder::Host>, uint8_t*,
                             uint32_t);
template Decoded decodeTable(host::serial_env&, const Schema&, Buffer<ByteOrder::Reversed>,
                             uint8_t*, uint32_t);

}  // namespace mesh::wire
