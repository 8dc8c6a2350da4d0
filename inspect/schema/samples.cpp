#include "inspect/schema/samples.hpp"

#include <random>

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

constexpr uint32_t longestBytes = 40;
constexpr uint32_t mostItems = 2;

class Filler {
 public:
  Filler(OwnedRecord& owner, size_t number)
      : owner_(owner), random_(number), isFull_(number == 1) {}

  void fill(const Schema& schema, uint8_t* record) {
    for (const Slot& slot : schema.slots) {
      fillSlot(slot, record);
    }
  }

 private:
  void fillSlot(const Slot& slot, uint8_t* record) {
    uint8_t* const field = record + slot.recordOffset;
    switch (slot.kind) {
      case Kind::Scalar:
        if (isFull_ || random_() % 4 != 0) {
          fillBytes(field, slot.size);
        }
        break;
      case Kind::Array:
        fillBytes(field, slot.size);
        break;
      case Kind::Table:
        fill(*slot.nested, field);
        break;
      case Kind::Bytes:
        if (uint8_t* const block = addBlock(slot, record, longestBytes)) {
          fillBytes(block, loadAs<uint32_t>(record + slot.countOffset));
        }
        break;
      case Kind::Vector: {
        uint8_t* const items = addBlock(slot, record, mostItems);
        for (uint32_t item = 0; item < loadAs<uint32_t>(record + slot.countOffset); ++item) {
          fill(*slot.nested, items + item * slot.size);
        }
        break;
      }
    }
  }

  // Null for none.
  uint8_t* addBlock(const Slot& slot, uint8_t* record, uint32_t most) {
    const auto count = static_cast<uint32_t>(random_() % (most + 1));
    if (count == 0) {
      return nullptr;
    }
    uint8_t* const block = owner_.addBlock(uint64_t{count} * slot.size);
    storeAs(record + slot.countOffset, count);
    storeAs(record + slot.recordOffset, block);
    return block;
  }

  void fillBytes(uint8_t* to, size_t count) {
    for (size_t at = 0; at < count; ++at) {
      to[at] = isFull_ ? 0xFF : static_cast<uint8_t>(random_());
    }
  }

  OwnedRecord& owner_;
  std::mt19937 random_;
  bool isFull_;
};

}  // namespace

OwnedRecord sampleOf(const KnownMessage& message, size_t number) {
  OwnedRecord record(message);
  if (number != 0) {
    Filler(record, number).fill(message.schema(), record.data());
  }
  return record;
}

}  // namespace inspect
