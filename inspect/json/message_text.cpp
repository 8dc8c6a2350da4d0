#include "inspect/json/message_text.hpp"

#include <algorithm>

#include "wire/slot_reader.hpp"

namespace inspect {
namespace {

using mesh::wire::Contents;
using mesh::wire::Head;
using mesh::wire::HeadFault;
using mesh::wire::HostBuffer;
using mesh::wire::Kind;
using mesh::wire::Position;
using mesh::wire::Schema;
using mesh::wire::Slot;

// Shorter byte strings are always written in full.
constexpr size_t longestPlain = 64;

// Only counts the text, up to a limit.
class Length {
 public:
  explicit Length(uint64_t most) : most_(most) {}

  void append(char /*character*/) { ++size_; }
  void append(std::string_view text) { size_ += text.size(); }
  void append(size_t count, char /*character*/) { size_ += count; }
  void appendNumber(uint64_t /*value*/) { ++size_; }
  void appendHex(std::span<const uint8_t> bytes) { size_ += 2 * bytes.size(); }
  [[nodiscard]] bool isTooLong() const { return size_ > most_; }

 private:
  uint64_t most_;
  uint64_t size_ = 0;
};

bool isTooLong(const Text& /*text*/) {
  return false;
}

bool isTooLong(const Length& length) {
  return length.isTooLong();
}

template <typename Sink>
class MessageWriter {
 public:
  MessageWriter(Sink& out, std::span<const uint8_t> bytes, const JsonStyle& style)
      : out_(out),
        layout_(out, style),
        isWhole_(style.isWhole),
        buffer_{bytes.data(), static_cast<uint32_t>(bytes.size())},
        comparable_((uint64_t{64} << 20) + bytes.size()) {}

  void writeRoot(const Schema& schema) { writeTable(schema, buffer_.read<uint32_t>(0)); }

 private:
  static constexpr auto once = [] { return uint64_t{1}; };

  // Returns false if the table is at fault: then the slots from the fault on are absent, as after
  // decoding. countTimes() tells for how many tables this one stands, if it has no fault.
  template <typename CountTimes = decltype(once)>
  bool writeTable(const Schema& schema, Position at, CountTimes countTimes = once) {
    Head head{};
    bool isGood = at != 0 && locate(at, head);
    bool isFirst = true;
    layout_.open('{');
    for (size_t index = 0; index < schema.slots.size(); ++index) {
      const Slot& slot = schema.slots[index];
      layout_.next(isFirst);
      isFirst = false;
      layout_.name(slot.name.data());
      const Position value = isGood ? valueOf(head, index) : 0;
      const bool isRead = value == 0 ? writeAbsent(slot) : writeValue(slot, value);
      isGood = isGood &&
               (isRead || (slot.kind == Kind::Table &&
                           schema.style.nestedFailure == mesh::wire::NestedFailure::IsIgnored));
    }
    const uint64_t times = isGood ? countTimes() : 1;
    if (times > 1) {
      layout_.next(isFirst);
      layout_.name("times");
      out_.appendNumber(times);
    }
    layout_.close('}', isFirst && times == 1);
    return isGood;
  }

  bool locate(Position at, Head& head) const {
    return buffer_.readHead(static_cast<uint32_t>(at), head) == HeadFault::None;
  }

  // The position of a slot's value, or 0 if it is absent.
  [[nodiscard]] Position valueOf(const Head& head, size_t index) const {
    const uint64_t entryAt = 4 + 2 * uint64_t{index};
    if (entryAt + 2 > head.vtableLength) {
      return 0;
    }
    const uint32_t entry = buffer_.read<uint16_t>(head.vtable + entryAt);
    return entry == 0 ? 0 : Position{head.table} + entry;
  }

  bool writeAbsent(const Slot& slot) {
    switch (slot.kind) {
      case Kind::Scalar:
        layout_.number(0, slot.size);
        break;
      case Kind::Array:
        writeZeros(slot.size);
        break;
      case Kind::Bytes:
        layout_.bytes({});
        break;
      case Kind::Table:
        writeTable(*slot.nested, 0);
        break;
      case Kind::Vector:
        out_.append("[]");
        break;
    }
    return true;
  }

  bool writeValue(const Slot& slot, Position at) {
    if (!buffer_.holds(at, mesh::wire::footprint(slot))) {
      writeAbsent(slot);
      return false;
    }
    switch (slot.kind) {
      case Kind::Scalar: {
        uint64_t value = 0;
        std::memcpy(&value, buffer_.data + at, slot.size);
        layout_.number(value, slot.size);
        return true;
      }
      case Kind::Array:
      case Kind::Bytes: {
        Contents contents{};
        if (!buffer_.locateBytes(at, contents) ||
            (slot.kind == Kind::Array && contents.length != slot.size)) {
          writeAbsent(slot);
          return false;
        }
        writeBytes({contents.bytes, contents.length});
        return true;
      }
      case Kind::Table: {
        Position table = 0;
        return writeTable(*slot.nested, buffer_.follow(at, table) ? table : 0);
      }
      case Kind::Vector:
        return writeVector(slot, at);
    }
    return false;
  }

  void writeBytes(std::span<const uint8_t> bytes) {
    if (isShortened(bytes.size()) && mayCompare(bytes.size()) &&
        std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0) {
      layout_.repeated(bytes[0], bytes.size());
    } else {
      layout_.bytes(bytes);
    }
  }

  void writeZeros(size_t size) {
    if (isShortened(size)) {
      layout_.repeated(0, size);
    } else {
      layout_.zeros(size);
    }
  }

  // Whether a byte string of this size is shortened if all its bytes are equal.
  [[nodiscard]] bool isShortened(size_t size) const { return !isWhole_ && size > longestPlain; }

  bool writeVector(const Slot& slot, Position word) {
    Position vector = 0;
    uint64_t count = 0;
    bool isGood = buffer_.follow(word, vector) && buffer_.holds(vector, 4);
    if (isGood) {
      count = buffer_.read<uint32_t>(vector);
      isGood = buffer_.holds(vector + 4, 4 * count) && slot.size * count <= UINT32_MAX;
    }
    if (!isGood) {
      return !writeAbsent(slot);
    }
    layout_.open('[');
    for (uint64_t item = 0; item < count && !isTooLong(out_);) {
      layout_.next(item == 0);
      const Position table = isGood ? tableOf(vector, item) : 0;
      ++item;
      isGood = writeTable(*slot.nested, table, [&] {
        uint64_t times = 1;
        for (; !isWhole_ && item < count && areEqual(*slot.nested, table, tableOf(vector, item));
             ++item) {
          ++times;
        }
        return times;
      });
    }
    layout_.close(']', count == 0);
    return isGood;
  }

  // The table of an item, or 0 if its word leads nowhere.
  [[nodiscard]] Position tableOf(Position vector, uint64_t item) const {
    Position table = 0;
    return buffer_.follow(vector + 4 + 4 * item, table) ? table : 0;
  }

  // Whether two tables certainly hold the same and have no fault.
  bool areEqual(const Schema& schema, Position one, Position other) {
    Head first{};
    Head second{};
    if (!locate(one, first) || !locate(other, second) || !mayCompare(schema.slots.size())) {
      return false;
    }
    for (size_t index = 0; index < schema.slots.size(); ++index) {
      const Position a = valueOf(first, index);
      const Position b = valueOf(second, index);
      if (a != b && (a == 0 || b == 0 || !areEqual(schema.slots[index], a, b))) {
        return false;
      }
    }
    return true;
  }

  bool areEqual(const Slot& slot, Position one, Position other) {
    const uint32_t size = mesh::wire::footprint(slot);
    if (!buffer_.holds(one, size) || !buffer_.holds(other, size)) {
      return false;
    }
    Position first = 0;
    Position second = 0;
    switch (slot.kind) {
      case Kind::Scalar:
        return std::memcmp(buffer_.data + one, buffer_.data + other, size) == 0;
      case Kind::Array:
      case Kind::Bytes: {
        Contents a{};
        Contents b{};
        return buffer_.locateBytes(one, a) && buffer_.locateBytes(other, b) &&
               a.length == b.length &&
               (a.bytes == b.bytes ||
                (mayCompare(a.length) && std::memcmp(a.bytes, b.bytes, a.length) == 0));
      }
      case Kind::Table:
        return buffer_.follow(one, first) && buffer_.follow(other, second) &&
               areEqual(*slot.nested, first, second);
      case Kind::Vector:
        return buffer_.follow(one, first) && buffer_.follow(other, second) && first == second;
    }
    return false;
  }

  // Bounds the time: many items may share long contents.
  bool mayCompare(uint64_t size) {
    const bool may = size <= comparable_;
    comparable_ -= may ? size : 0;
    return may;
  }

  Sink& out_;
  JsonLayout<Sink> layout_;
  bool isWhole_;
  HostBuffer buffer_;
  uint64_t comparable_;  // bytes that may still be compared
};

}  // namespace

void writeMessage(Text& text, const Schema& schema, std::span<const uint8_t> bytes,
                  const JsonStyle& style) {
  MessageWriter<Text>(text, bytes, style).writeRoot(schema);
}

void refuseLongText(const Schema& schema, std::span<const uint8_t> bytes, const JsonStyle& style) {
  // The text of other records is bounded by their size.
  if (style.isWhole || !mesh::wire::ownsMemory(schema)) {
    return;
  }
  const uint64_t most = (uint64_t{1} << 20) + 16 * uint64_t{bytes.size()};
  Length length(most);
  MessageWriter<Length>(length, bytes, style).writeRoot(schema);
  if (length.isTooLong()) {
    throw Failure(Cause::BadInput, "shared tables or bytes make its JSON longer than " +
                                       std::to_string(most) + " bytes; --all writes it");
  }
}

}  // namespace inspect
