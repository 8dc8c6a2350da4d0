#include "oracle/values/fill.hpp"

namespace oracle {
namespace {

std::vector<Value> fillItems(const Description& item, uint32_t count, Source& source) {
  std::vector<Value> items;
  for (uint32_t index = 0; index < count; ++index) {
    items.push_back(fill(item, source));
  }
  return items;
}

void fillField(FieldValue& field, const Field& shape, Source& source) {
  switch (shape.kind) {
    case Kind::U8:
    case Kind::U16:
    case Kind::U32:
    case Kind::U64:
      field.scalar = source.scalar(shape.size);
      break;
    case Kind::Array:
      field.bytes = source.array(shape.size);
      break;
    case Kind::Bytes:
      source.fillString(field);
      break;
    case Kind::Table:
      nested(field) = fill(*shape.nested, source);
      break;
    case Kind::Vector:
      if (const std::optional<uint32_t> count = source.itemCount(field)) {
        setItems(field, fillItems(*shape.nested, *count, source));
      }
      break;
  }
}

}  // namespace

Value fill(const Description& message, Source& source) {
  Value value = zeroValue(message);
  const uint32_t present = source.presentSlots();
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    const Field& shape = message.fields[slot];
    if (((present >> slot) & 1) != 0 || shape.kind == Kind::Table) {
      fillField(value[slot], shape, source);
    }
  }
  return value;
}

}  // namespace oracle
