#include "inspect/json/record_text.hpp"

#include "inspect/messages/release.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

class RecordWriter {
 public:
  RecordWriter(Text& text, const JsonStyle& style) : layout_(text, style) {}

  void write(const Schema& schema, const uint8_t* record) {
    layout_.open('{');
    bool isFirst = true;
    for (const Slot& slot : schema.slots) {
      layout_.next(isFirst);
      isFirst = false;
      layout_.name(slot.name.data());
      writeSlot(slot, record);
    }
    layout_.close('}', isFirst);
  }

 private:
  void writeSlot(const Slot& slot, const uint8_t* record) {
    const uint8_t* const field = record + slot.recordOffset;
    switch (slot.kind) {
      case Kind::Scalar: {
        uint64_t value = 0;
        std::memcpy(&value, field, slot.size);
        return layout_.number(value, slot.size);
      }
      case Kind::Array:
        return layout_.bytes({field, slot.size});
      case Kind::Bytes: {
        const auto* const bytes = loadAs<const uint8_t*>(field);
        const auto length = loadAs<uint32_t>(record + slot.countOffset);
        return layout_.bytes({bytes, bytes == nullptr ? 0 : length});
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

  void writeItems(const Slot& slot, const uint8_t* items, uint64_t count) {
    layout_.open('[');
    for (uint64_t item = 0; item < count; ++item) {
      layout_.next(item == 0);
      write(*slot.nested, items + item * slot.size);
    }
    layout_.close(']', count == 0);
  }

  JsonLayout<Text> layout_;
};

}  // namespace

void writeRecord(Text& text, const Schema& schema, const uint8_t* record, const JsonStyle& style) {
  RecordWriter(text, style).write(schema, record);
}

}  // namespace inspect
