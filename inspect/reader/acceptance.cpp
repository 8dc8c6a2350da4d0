#include "inspect/reader/acceptance.hpp"

#include <algorithm>

#include "wire/slot_reader.hpp"

namespace inspect {
namespace {

using mesh::wire::Contents;
using mesh::wire::Head;
using mesh::wire::HostBuffer;
using mesh::wire::Kind;
using mesh::wire::Position;
using mesh::wire::Schema;
using mesh::wire::Slot;

// Verifies what the slot reader verifies, and reads no value.
class Verifier {
 public:
  explicit Verifier(HostBuffer buffer) : buffer_(buffer) {}

  bool acceptsTable(const Schema& schema, uint32_t table) {
    Head head;
    if (buffer_.readHead(table, head) != mesh::wire::HeadFault::None) [[unlikely]] {
      return false;
    }
    const size_t held = head.vtableLength < 4 ? 0 : (head.vtableLength - 4) / 2;
    const uint8_t* entry = buffer_.data + head.vtable + 4;
    const uint32_t left = buffer_.length - table;
    const auto slots = schema.slots.first(std::min(held, schema.slots.size()));
    for (const Slot& slot : slots) {
      const uint32_t at = mesh::host::load<uint16_t>(entry);
      entry += 2;
      const bool isInside = at + mesh::wire::footprint(slot) <= left;
      if (slot.kind == Kind::Scalar) {
        if (!isInside && at != 0) [[unlikely]] {
          return false;
        }
      } else if (at != 0 && !(isInside && acceptsValue(slot, Position{table} + at))) [[unlikely]] {
        if (slot.kind != Kind::Table ||
            schema.style.nestedFailure == mesh::wire::NestedFailure::FailsTheTable) {
          return false;
        }
        isTolerant_ = true;
      }
    }
    return true;
  }

  // Whether a fault was ignored.
  [[nodiscard]] bool isTolerant() const { return isTolerant_; }

 private:
  bool acceptsValue(const Slot& slot, Position at) {
    if (slot.kind == Kind::Table) {
      return acceptsNested(*slot.nested, at);
    }
    if (slot.kind == Kind::Vector) {
      return acceptsVector(slot, at);
    }
    Contents contents{};
    return buffer_.locateBytes(at, contents) &&
           (slot.kind == Kind::Bytes || contents.length == slot.size);
  }

  bool acceptsNested(const Schema& nested, Position word) {
    Position table = 0;
    return buffer_.follow(word, table) && acceptsTable(nested, static_cast<uint32_t>(table));
  }

  bool acceptsVector(const Slot& slot, Position word) {
    Position vector = 0;
    if (!buffer_.follow(word, vector) || !buffer_.holds(vector, 4)) {
      return false;
    }
    const uint64_t count = buffer_.read<uint32_t>(vector);
    if (!buffer_.holds(vector + 4, 4 * count) || slot.size * count > UINT32_MAX) {
      return false;
    }
    for (uint64_t item = 0; item < count; ++item) {
      if (!acceptsNested(*slot.nested, vector + 4 + 4 * item)) {
        return false;
      }
    }
    return true;
  }

  const HostBuffer buffer_;
  bool isTolerant_ = false;
};

}  // namespace

Acceptance acceptanceOf(const Schema& schema, std::span<const uint8_t> bytes) {
  if (bytes.size() < 4 || bytes.size() > INT32_MAX) {
    return Acceptance::Rejected;
  }
  Verifier verifier({bytes.data(), static_cast<uint32_t>(bytes.size())});
  return !verifier.acceptsTable(schema, mesh::host::load<uint32_t>(bytes.data()))
             ? Acceptance::Rejected
         : verifier.isTolerant() ? Acceptance::Tolerated
                                 : Acceptance::Accepted;
}

}  // namespace inspect
