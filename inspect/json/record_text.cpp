#include "inspect/json/record_text.hpp"

#include "inspect/messages/release.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

class RecordWriter {
 public:
  RecordWriter(Text& text, const JsonStyle& style) : text_(text), style_(style) {}

  void write(const Schema& schema, const uint8_t* record) {
    open('{');
    bool isFirst = true;
    for (const Slot& slot : schema.slots) {
      next(isFirst);
      isFirst = false;
      text_.append('"');
      text_.append(std::string_view(slot.name.data()));
      text_.append(style_.indent < 0 ? std::string_view("\":") : std::string_view("\": "));
      writeSlot(slot, record);
    }
    close('}', isFirst);
  }

 private:
  void writeSlot(const Slot& slot, const uint8_t* record) {
    const uint8_t* const field = record + slot.recordOffset;
    switch (slot.kind) {
      case Kind::Scalar: {
        uint64_t value = 0;
        std::memcpy(&value, field, slot.size);
        if (style_.isBigText && slot.size == sizeof value) {
          return text_.append('"' + hex(value) + '"');
        }
        return text_.appendNumber(value);
      }
      case Kind::Array:
        return writeBytes({field, slot.size});
      case Kind::Bytes: {
        const auto* const bytes = loadAs<const uint8_t*>(field);
        const auto length = loadAs<uint32_t>(record + slot.countOffset);
        return writeBytes({bytes, bytes == nullptr ? 0 : length});
      }
      case Kind::Table:
        return write(*slot.nested, field);
      case Kind::Vector: {
        const auto* const items = loadAs<const uint8_t*>(field);
        const auto count = loadAs<uint32_t>(record + slot.countOffset);
        return writeItems(slot, items, items == nullptr ? 0 : count);
      }
    }
  }

  void writeBytes(std::span<const uint8_t> bytes) {
    text_.append('"');
    if (style_.byteText == ByteText::Hex) {
      text_.appendHex(bytes);
    } else {
      text_.append(toBase64(bytes));
    }
    text_.append('"');
  }

  void writeItems(const Slot& slot, const uint8_t* items, uint64_t count) {
    open('[');
    for (uint64_t item = 0; item < count; ++item) {
      next(item == 0);
      write(*slot.nested, items + item * slot.size);
    }
    close(']', count == 0);
  }

  void open(char bracket) {
    text_.append(bracket);
    ++depth_;
  }

  // Before a member or an item.
  void next(bool isFirst) {
    if (!isFirst) {
      text_.append(',');
    }
    breakLine();
  }

  void close(char bracket, bool isEmpty) {
    --depth_;
    if (!isEmpty) {
      breakLine();
    }
    text_.append(bracket);
  }

  void breakLine() {
    if (style_.indent >= 0) {
      text_.append('\n');
      text_.append(static_cast<size_t>(style_.indent) * depth_, ' ');
    }
  }

  Text& text_;
  const JsonStyle style_;
  size_t depth_ = 0;
};

}  // namespace

void writeRecord(Text& text, const Schema& schema, const uint8_t* record, const JsonStyle& style) {
  RecordWriter(text, style).write(schema, record);
}

}  // namespace inspect
