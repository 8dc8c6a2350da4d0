#include "damage.hpp"

#include <algorithm>

namespace differential {
namespace {

constexpr uint32_t smallest = 4;
// Distances of a value from a bound.
constexpr uint32_t around = 10;

constexpr auto telling = std::to_array<uint32_t>(
    {0,          1,          2,          3,          4,          5,          6,          7,
     8,          16,         0x7FFE,     0x7FFF,     0x8000,     0x8001,     0xFFF0,     0xFFF8,
     0xFFFC,     0xFFFE,     0xFFFF,     0x10000,    0x10004,    0x7FFFFFFC, 0x7FFFFFFF, 0x80000000,
     0xFFFFFFF8, 0xFFFFFFFB, 0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF});

// Bytes of a message with one meaning.
struct Place {
  uint32_t at;
  uint32_t width;
  // The position that the value counts from.
  uint32_t base;
};

bool holds(const Draft& draft, uint64_t at, uint32_t width) {
  return at + width <= draft.held;
}

Place anywhere(Random& random, const Draft& draft) {
  constexpr uint32_t widths[] = {1, 2, 4, 8};
  const uint32_t width = std::min(widths[random.below(4)], draft.held);
  const uint32_t at = random.below(draft.held - width + 1);
  return {at, width, at};
}

// Follows the message's offsets as far as possible, and stops at one of the words on the way.
Place pickPlace(Random& random, const wire::Schema& schema, const Draft& draft) {
  const wire::Schema* here = &schema;
  // The word that leads to the table.
  uint64_t word = 0;
  for (uint32_t depth = 0; depth < 4; ++depth) {
    if (!holds(draft, word, 4)) {
      break;
    }
    const uint64_t table = word + host::load<uint32_t>(&draft.bytes[word]);
    if (!holds(draft, table, 4)) {
      return {static_cast<uint32_t>(word), 4, static_cast<uint32_t>(word)};
    }
    const auto tableAt = static_cast<uint32_t>(table);
    const uint32_t vtable = tableAt - host::load<uint32_t>(&draft.bytes[table]);
    const auto slots = static_cast<uint32_t>(here->slots.size());
    const uint32_t index = random.below(slots);
    const wire::Slot& slot = here->slots[index];
    const uint64_t entryAt = uint64_t{vtable} + 4 + 2 * index;
    const uint32_t choice = random.below(slot.kind == wire::Kind::Scalar ? 8 : 16);
    if (choice == 0) {
      return {static_cast<uint32_t>(word), 4, static_cast<uint32_t>(word)};
    }
    if (choice == 1 || !holds(draft, entryAt, 2)) {
      return {tableAt, 4, tableAt};
    }
    if (choice == 2) {
      return {vtable, 2, vtable};
    }
    if (choice <= 7) {
      return {static_cast<uint32_t>(entryAt), 2, tableAt};
    }
    const uint32_t field = tableAt + host::load<uint16_t>(&draft.bytes[entryAt]);
    if (!holds(draft, field, 4)) {
      break;
    }
    const uint64_t target = uint64_t{field} + host::load<uint32_t>(&draft.bytes[field]);
    if (choice <= 9 || !holds(draft, target, 4)) {
      return {field, 4, field};
    }
    if (slot.nested == nullptr || (choice == 10 && slot.kind == wire::Kind::Vector)) {
      const auto count = static_cast<uint32_t>(target);
      return {count, 4, count};
    }
    here = slot.nested;
    word = slot.kind == wire::Kind::Table ? field : target + 4 + 4 * random.below(2);
  }
  return anywhere(random, draft);
}

uint32_t load(const Draft& draft, const Place& place) {
  uint32_t value = 0;
  std::memcpy(&value, &draft.bytes[place.at], std::min<size_t>(place.width, sizeof value));
  return value;
}

uint32_t tellingValue(Random& random, const wire::Schema& schema, const Draft& draft,
                      const Place& place) {
  switch (random.below(8)) {
    case 0:
    case 1:
      return telling[random.below(telling.size())];
    case 2:
      return draft.length - random.below(around);
    case 3:
    case 4:
      return draft.length - place.base - random.below(around);
    case 5:
      return load(draft, place) + random.below(2 * around) - around;
    case 6: {
      const uint32_t difference = pickPlace(random, schema, draft).at - place.base;
      return random.oneIn(2) ? difference : 0 - difference;
    }
    default:
      return static_cast<uint32_t>(random.next());
  }
}

void changePlace(Random& random, const wire::Schema& schema, Draft& draft) {
  const Place place = random.oneIn(8) ? anywhere(random, draft) : pickPlace(random, schema, draft);
  uint8_t* const at = &draft.bytes[place.at];
  if (random.oneIn(8)) {
    at[random.below(place.width)] ^= static_cast<uint8_t>(1 << random.below(8));
    return;
  }
  const uint64_t value = tellingValue(random, schema, draft, place);
  std::memcpy(at, &value, place.width);
}

// The draft holds bytes up to `length`. Adds zeros up to the smallest buffer.
void setLength(Draft& draft, uint32_t length) {
  for (; length < smallest; ++length) {
    draft.bytes[length] = 0;
  }
  draft.length = draft.held = std::min(length, Draft::capacity / 2);
}

}  // namespace

void lengthen(Random& random, Draft& draft) {
  draft.length = std::max(draft.held, uint32_t{UINT16_MAX} - 8 + random.below(96));
}

void moveAll(Random& random, Draft& draft) {
  const uint32_t distance = 1 + random.below(8);
  std::memmove(&draft.bytes[4 + distance], &draft.bytes[4], draft.held - 4);
  random.fill(&draft.bytes[4], distance);
  host::store(draft.bytes.data(), host::load<uint32_t>(draft.bytes.data()) + distance);
  setLength(draft, draft.held + distance);
}

void moveHead(Random& random, Draft& draft) {
  const auto table = host::load<uint32_t>(draft.bytes.data());
  if (!holds(draft, table, 4)) {
    return;
  }
  const uint32_t vtable = table - host::load<uint32_t>(&draft.bytes[table]);
  const uint32_t last = draft.held - 4;
  const uint32_t to =
      random.oneIn(2) ? last - std::min(last, random.below(around)) : random.below(last + 1);
  host::store(&draft.bytes[to], to - vtable);
  host::store(draft.bytes.data(), to);
}

void splice(Random& random, Draft& draft, const Draft& other) {
  const uint32_t at = random.below(draft.held);
  const uint32_t from = random.oneIn(2) ? std::min(at, other.held) : random.below(other.held);
  std::memcpy(&draft.bytes[at], &other.bytes[from], other.held - from);
  setLength(draft, at + other.held - from);
}

void change(Random& random, const wire::Schema& schema, Draft& draft) {
  const uint32_t kind = random.below(16);
  if (kind > 2 || draft.length != draft.held) {
    changePlace(random, schema, draft);
  } else if (kind == 0) {
    setLength(draft, draft.held - std::min(draft.held, random.below(around)));
  } else if (kind == 1) {
    const uint32_t into = random.below(5);
    const uint32_t length =
        random.oneIn(2) ? random.below(draft.held) : pickPlace(random, schema, draft).at + into;
    setLength(draft, std::min(length, draft.held));
  } else {
    const uint32_t added = 1 + random.below(2 * around);
    random.fill(&draft.bytes[draft.held], added);
    setLength(draft, draft.held + added);
  }
}

}  // namespace differential
