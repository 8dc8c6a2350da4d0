#include "values.hpp"

#include <algorithm>

namespace fuzz {
namespace {

using oracle::Field;
using oracle::FieldValue;
using oracle::Kind;

uint64_t takeScalar(FuzzedDataProvider& input, uint32_t width) {
  switch (width) {
    case 1:
      return input.ConsumeIntegral<uint8_t>();
    case 2:
      return input.ConsumeIntegral<uint16_t>();
    case 4:
      return input.ConsumeIntegral<uint32_t>();
    default:
      return input.ConsumeIntegral<uint64_t>();
  }
}

// As many bytes as the input wants to spend, and then zeros.
std::vector<uint8_t> takeArray(FuzzedDataProvider& input, uint32_t size) {
  std::vector<uint8_t> bytes =
      input.ConsumeBytes<uint8_t>(std::min<uint32_t>(size, input.ConsumeIntegral<uint8_t>()));
  bytes.resize(size, 0);
  return bytes;
}

// Returns whether the length is true.
bool takeBytes(FuzzedDataProvider& input, Lengths lengths, FieldValue& field) {
  switch (input.ConsumeIntegralInRange(0, lengths == Lengths::MayLie ? 5 : 4)) {
    case 0:
      return true;
    case 1:  // a length without a pointer
      field.length = input.ConsumeIntegral<uint32_t>();
      return true;
    case 2:
      oracle::setBytes(field, {});
      return true;
    case 3:
      oracle::setBytes(field, input.ConsumeBytes<uint8_t>(input.ConsumeIntegral<uint8_t>()));
      return true;
    case 4:  // up to about three times what a table's length can state
      oracle::setBytes(field, std::vector<uint8_t>(size_t{3} * input.ConsumeIntegral<uint16_t>(),
                                                   input.ConsumeIntegral<uint8_t>()));
      return true;
    default:
      oracle::setBytes(field, {1});
      field.length = input.ConsumeIntegral<uint32_t>();
      return field.length <= 1;
  }
}

oracle::Value take(FuzzedDataProvider& input, const oracle::Description& message, Lengths lengths,
                   bool& lies);

void takeItems(FuzzedDataProvider& input, const Field& shape, Lengths lengths, FieldValue& field,
               bool& lies) {
  const auto form = input.ConsumeIntegralInRange(0, 5);
  if (form == 0) {
    return;
  }
  if (form == 1) {  // a count without a pointer
    field.length = input.ConsumeIntegral<uint32_t>();
    return;
  }
  std::vector<oracle::Value> items;
  for (int count = 2; count < form; ++count) {
    items.push_back(take(input, *shape.nested, lengths, lies));
  }
  oracle::setItems(field, items);
}

oracle::Value take(FuzzedDataProvider& input, const oracle::Description& message, Lengths lengths,
                   bool& lies) {
  oracle::Value value = oracle::zeroValue(message);
  const auto present = input.ConsumeIntegral<uint32_t>();
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    const Field& shape = message.fields[slot];
    FieldValue& field = value[slot];
    if (((present >> slot) & 1) == 0 && shape.kind != Kind::Table) {
      continue;
    }
    switch (shape.kind) {
      case Kind::U8:
      case Kind::U16:
      case Kind::U32:
      case Kind::U64:
        field.scalar = takeScalar(input, shape.size);
        break;
      case Kind::Array:
        field.bytes = takeArray(input, shape.size);
        break;
      case Kind::Bytes:
        lies = !takeBytes(input, lengths, field) || lies;
        break;
      case Kind::Table:
        oracle::nested(field) = take(input, *shape.nested, lengths, lies);
        break;
      case Kind::Vector:
        takeItems(input, shape, lengths, field, lies);
        break;
    }
  }
  return value;
}

}  // namespace

Taken takeRecord(FuzzedDataProvider& input, const oracle::Description& message, Lengths lengths) {
  Taken taken;
  taken.value = take(input, message, lengths, taken.lies);
  return taken;
}

}  // namespace fuzz
