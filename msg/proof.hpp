// What the services' proofs share. A proof states a service's numbers, written out by hand: what
// peers have been built against. Nothing of it is compiled into the library. A number that no
// longer holds stops the compiler in its record's row, with a call named after what differs.
#pragma once

#include <initializer_list>

#include "msg/message.hpp"
#include "wire/compact_size.hpp"

namespace mesh::msg::proof {

// Declared only: a call of one is not a constant expression.
void theIdentifierDiffers();
void theArrangementDiffers();
void theRootIsDecodedOtherwise();
void theLargestSizeDiffers();
void theRecordSizeDiffers();
void aFieldStandsElsewhere();
void theVtableLengthDiffers();
void theSmallestMessageDiffers();
void theLargestMessageDiffers();
void theFixedTableLengthDiffers();
void theFixedVtableStandsElsewhere();
void theFixedLengthDiffers();
void aFixedEntryDiffers();

consteval void require(bool holds, void (*complaint)()) {
  if (!holds) {
    complaint();
  }
}

struct Numbers {
  uint32_t id;
  uint32_t size;
  // Where each slot's value stands in the record, of byte strings and vectors the pointer; none
  // where natural alignment says it all.
  std::initializer_list<uint32_t> offsets;
  uint32_t vtable;
  uint32_t smallest;
  uint64_t largestSize = 0xFFFFFFFF;
  RootDecoding root = RootDecoding::ByMessage;
};

// Of a record without out-of-line parts.
struct FixedNumbers {
  uint32_t largest;
  uint32_t tableLength;
  uint32_t vtableAt;
  uint32_t length;
  std::initializer_list<uint32_t> entries;
};

consteval void prove(const Message& message, const Numbers& expected) {
  const wire::Schema& schema = *message.schema;
  require(message.id == expected.id, theIdentifierDiffers);
  require(message.policy.rootDecoding == expected.root, theRootIsDecodedOtherwise);
  require(message.policy.largestSize == expected.largestSize, theLargestSizeDiffers);
  require(schema.size == expected.size, theRecordSizeDiffers);
  for (size_t index = 0; index < expected.offsets.size(); ++index) {
    require(schema.slots[index].recordOffset == expected.offsets.begin()[index],
            aFieldStandsElsewhere);
  }
  require(wire::vtableLength(schema) == expected.vtable, theVtableLengthDiffers);
  require(4 + wire::smallestTableSize(schema) == expected.smallest, theSmallestMessageDiffers);
}

consteval bool compactMessage(const Message& message, const Numbers& expected) {
  prove(message, expected);
  require(message.policy.arrangement == Arrangement::Compact, theArrangementDiffers);
  return true;
}

consteval bool fixedMessage(const Message& message, const Numbers& expected,
                            const FixedNumbers& fixed) {
  const wire::Schema& schema = *message.schema;
  prove(message, expected);
  require(message.policy.arrangement == Arrangement::Fixed, theArrangementDiffers);
  require(expected.smallest + wire::scalarWidths(schema) == fixed.largest,
          theLargestMessageDiffers);
  require(wire::fixedTableLength(schema) == fixed.tableLength, theFixedTableLengthDiffers);
  require(wire::fixedVtable(schema) == fixed.vtableAt, theFixedVtableStandsElsewhere);
  require(wire::fixedLength(schema) == fixed.length, theFixedLengthDiffers);
  require(schema.slots.size() == fixed.entries.size(), aFixedEntryDiffers);
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    require(wire::fixedEntry(schema, index) == fixed.entries.begin()[index], aFixedEntryDiffers);
  }
  return true;
}

template <typename Record>
consteval bool compactMessage(const Numbers& expected) {
  return compactMessage(messageOf<Record>, expected);
}

template <typename Record>
consteval bool fixedMessage(const Numbers& expected, const FixedNumbers& fixed) {
  return fixedMessage(messageOf<Record>, expected, fixed);
}

inline constexpr auto byTableReader = RootDecoding::ByTableReader;

}  // namespace mesh::msg::proof

// One for each line of a service's list of messages.
#define MESH_COUNT_MESSAGE(message, identifier) +1
