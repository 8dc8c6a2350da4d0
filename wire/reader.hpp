// The verifying reader: a table in a received buffer becomes a record, slot by slot.
//
// It walks the record's schema while it runs, and its word is final: the readers of fixed images
// and of sound tables only come to the same results faster. Nothing is read before its place has
// been compared with the buffer's end. The buffer is hostile; the record and the schema are ours.
#pragma once

#include "host/binding.hpp"
#include "wire/buffer.hpp"
#include "wire/schema.hpp"

namespace mesh::wire {

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

// Verifies the frame of the table at `table`: its position, its vtable's position, its vtable's
// length. A failure is logged under `function`. The buffer is at least 4 bytes long.
template <host::ByteOrder order>
Decoded locateTable(host::serial_env& env, const char* function, Buffer<order> buffer,
                    uint32_t table, TableFrame& frame);

// Decodes a verified table's slots in slot order. What the table does not carry keeps the zero that
// the caller has stored. The first value that does not fit ends the decoding, unlogged; what was
// decoded stays, blocks included: releasing them is the caller's.
template <host::ByteOrder order>
Decoded decodeSlots(host::serial_env& env, const Schema& schema, Decoder decoder,
                    Buffer<order> buffer, const TableFrame& frame, uint8_t* into);

// The table reader of a record: locates the table at `table`, and decodes its slots into `into`,
// which the caller has cleared.
template <host::ByteOrder order>
Decoded decodeTable(host::serial_env& env, const Schema& schema, Buffer<order> buffer,
                    uint8_t* into, uint32_t table);

// A byte string in the buffer.
struct Contents {
  const uint8_t* bytes;
  uint32_t length;
};

// Gives a byte string that is not empty to its slot of the record: its length, and a copy in a
// block of its own. Fails, with a log, where the host refuses the block; the length stays.
Decoded takeBytes(host::serial_env& env, const Schema& schema, Decoder decoder, const Slot& slot,
                  Contents contents, uint8_t* into);

}  // namespace mesh::wire
