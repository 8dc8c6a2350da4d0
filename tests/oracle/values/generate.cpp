#include "oracle/values/generate.hpp"

namespace oracle {
namespace {

// Plain remainders: the distributions of the standard library differ between implementations.
uint64_t below(std::mt19937_64& random, uint64_t limit) {
  return random() % limit;
}

uint64_t largestOf(uint32_t width) {
  return UINT64_MAX >> (64 - 8 * width);
}

uint64_t randomScalar(uint32_t width, std::mt19937_64& random, Density density) {
  constexpr uint64_t edges[] = {0,      1,          0x7F,       0x80,       0xFF,
                                0x7FFF, 0x8000,     0xFFFF,     0x7FFFFFFF, 0x80000000,
                                0x100,  0xFFFFFFFF, 1ULL << 32, 1ULL << 63, UINT64_MAX};
  const uint64_t largest = largestOf(width);
  switch (density) {
    case Density::Full:
      return 1 + below(random, largest);
    case Density::Sparse:
      return below(random, 2) == 0 ? 0 : 1 + below(random, largest);
    case Density::Edge:
      return edges[below(random, std::size(edges))] & largest;
  }
  misuse("unknown density");
}

std::vector<uint8_t> randomBytes(size_t size, std::mt19937_64& random, Density density) {
  constexpr uint8_t edges[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
  const uint8_t repeated = edges[below(random, std::size(edges))];
  std::vector<uint8_t> bytes(size, repeated);
  if (density != Density::Edge) {
    for (uint8_t& byte : bytes) {
      byte = static_cast<uint8_t>(random());
    }
  }
  return bytes;
}

void fillString(FieldValue& field, std::mt19937_64& random, Density density) {
  switch (below(random, 8)) {
    case 0:
    case 1:
      return;  // null
    case 2:
      return setBytes(field, {});
    case 3:
      return setBytes(field, randomBytes(1, random, density));
    case 4:
      return setBytes(field, randomBytes(200 + below(random, 400), random, density));
    default:
      return setBytes(field, randomBytes(2 + below(random, 30), random, density));
  }
}

void fillItems(FieldValue& field, const Field& shape, std::mt19937_64& random, Density density) {
  const uint64_t count = below(random, 4);
  if (count == 0 && below(random, 4) != 0) {
    return;  // null; else a pointer that leads to no items
  }
  std::vector<Value> items;
  for (uint64_t i = 0; i < count; ++i) {
    items.push_back(randomValue(*shape.nested, random, density));
  }
  setItems(field, items);
}

}  // namespace

Value randomValue(const Description& message, std::mt19937_64& random, Density density) {
  Value value = zeroValue(message);
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    const Field& shape = message.fields[slot];
    FieldValue& field = value[slot];
    switch (shape.kind) {
      case Kind::U8:
      case Kind::U16:
      case Kind::U32:
      case Kind::U64:
        field.scalar = randomScalar(shape.size, random, density);
        break;
      case Kind::Array:
        field.bytes = randomBytes(shape.size, random, density);
        break;
      case Kind::Bytes:
        fillString(field, random, density);
        break;
      case Kind::Table:
        nested(field) = randomValue(*shape.nested, random, density);
        break;
      case Kind::Vector:
        fillItems(field, shape, random, density);
        break;
    }
  }
  return value;
}

}  // namespace oracle
