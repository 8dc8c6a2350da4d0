#include <algorithm>
#include <set>

#include "oracle/values/generate.hpp"

namespace oracle {
namespace {

using Buffer = std::vector<uint8_t>;

uint64_t numberAt(const Buffer& buffer, uint64_t position, uint32_t width, bool reversed) {
  uint64_t number = 0;
  for (uint32_t i = 0; i < width && position + i < buffer.size(); ++i) {
    const uint32_t significance = reversed ? width - 1 - i : i;
    number |= static_cast<uint64_t>(buffer[position + i]) << (8 * significance);
  }
  return number;
}

void putNumber(Buffer& buffer, uint64_t position, uint32_t width, uint64_t number, bool reversed) {
  for (uint32_t i = 0; i < width && position + i < buffer.size(); ++i) {
    const uint32_t significance = reversed ? width - 1 - i : i;
    buffer[position + i] = static_cast<uint8_t>(number >> (8 * significance));
  }
}

// No schema has as many slots (the largest has 25). Damaged lengths claim up to 32,766.
constexpr uint64_t mostSlots = 64;

// Where the numbers stand that hold the buffer together, as far as they can be followed.
struct Frame {
  bool reversed = false;
  std::vector<uint64_t> words;          // u32: root, vtable offset, offset words, length words
  std::vector<uint64_t> halves;         // u16: vtable length, table length, slot entries
  std::vector<uint64_t> vtableLengths;  // the vtable lengths alone
  std::set<uint64_t> tables;  // followed already: contents can look like many offset words
};

void followTable(const Buffer& buffer, uint64_t table, int depth, Frame& frame) {
  if (table < 4 || table + 4 > buffer.size()) {
    return;
  }
  const uint64_t vtable = static_cast<uint32_t>(table - numberAt(buffer, table, 4, frame.reversed));
  if (vtable + 4 > buffer.size() || !frame.tables.insert(table).second) {
    return;
  }
  frame.words.push_back(table);
  frame.halves.insert(frame.halves.end(), {vtable, vtable + 2});
  frame.vtableLengths.push_back(vtable);
  const uint64_t length = numberAt(buffer, vtable, 2, frame.reversed);
  const uint64_t slotsEnd = vtable + std::min({length, buffer.size() - vtable, 4 + 2 * mostSlots});
  for (uint64_t slot = vtable + 4; slot + 2 <= slotsEnd; slot += 2) {
    frame.halves.push_back(slot);
    const uint64_t entry = numberAt(buffer, slot, 2, frame.reversed);
    const uint64_t position = table + entry;
    if (entry == 0 || position + 4 > buffer.size()) {
      continue;
    }
    // Which slots hold offset words is not known here; small values that lead inside may be.
    const uint64_t distance = numberAt(buffer, position, 4, frame.reversed);
    const uint64_t target = position + distance;
    if (distance < 4 || target + 4 > buffer.size()) {
      continue;
    }
    frame.words.insert(frame.words.end(), {position, target});
    if (depth < 2) {
      followTable(buffer, target, depth + 1, frame);
    }
  }
}

Frame frameOf(const Buffer& buffer) {
  Frame frame;
  frame.reversed = numberAt(buffer, 0, 4, false) > buffer.size();
  frame.words.push_back(0);
  followTable(buffer, numberAt(buffer, 0, 4, frame.reversed), 0, frame);
  return frame;
}

uint64_t tellingByte(const Buffer& buffer, std::mt19937_64& random) {
  constexpr uint8_t fixed[] = {0, 1, 3, 4, 0x7F, 0x80, 0xFF};
  const uint64_t choice = below(random, std::size(fixed) + 3);
  return choice < std::size(fixed) ? fixed[choice] : buffer.size() + below(random, 9) - 4;
}

uint64_t tellingNumber(const Buffer& buffer, uint64_t held, std::mt19937_64& random) {
  constexpr uint64_t fixed[] = {0,          1,          2,          3,          4,
                                5,          8,          0x7FFF,     0x8000,     0xFFFF,
                                0x3FFFFFFF, 0x40000000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0,
                                0xFFFFFFFC, 0xFFFFFFFF};
  switch (below(random, 4)) {
    case 0:
      return fixed[below(random, std::size(fixed))];
    case 1:
      return buffer.size() + below(random, 17) - 8;
    case 2:
      return held + below(random, 9) - 4;
    default:
      return below(random, buffer.size() + 8);
  }
}

void overwriteNumber(Buffer& buffer, const std::vector<uint64_t>& positions, uint32_t width,
                     bool reversed, std::mt19937_64& random) {
  if (positions.empty()) {
    return;
  }
  const uint64_t position = positions[below(random, positions.size())];
  const uint64_t held = numberAt(buffer, position, width, reversed);
  putNumber(buffer, position, width, tellingNumber(buffer, held, random), reversed);
}

// Around the lengths at which a slot comes into being or ceases to exist.
void editVtableLength(Buffer& buffer, const Frame& frame, std::mt19937_64& random) {
  if (frame.vtableLengths.empty()) {
    return;
  }
  const uint64_t position = frame.vtableLengths[below(random, frame.vtableLengths.size())];
  const uint64_t held = numberAt(buffer, position, 2, frame.reversed);
  const uint64_t left = buffer.size() - position;
  const uint64_t lengths[] = {
      0,        3,        4,        5,    6,       below(random, held + 4), held - 2, held - 1,
      held + 1, held + 2, left - 1, left, left + 1};
  putNumber(buffer, position, 2, lengths[below(random, std::size(lengths))], frame.reversed);
}

void injure(Buffer& buffer, std::mt19937_64& random) {
  const Frame frame = frameOf(buffer);
  const uint64_t place = below(random, buffer.size());
  const auto iterator = buffer.begin() + static_cast<Buffer::difference_type>(place);
  switch (below(random, 10)) {
    case 0:
      buffer[place] = static_cast<uint8_t>(buffer[place] ^ (1U << below(random, 8)));
      break;
    case 1:
      buffer[place] = static_cast<uint8_t>(tellingByte(buffer, random));
      break;
    case 2:
    case 3:
      overwriteNumber(buffer, frame.halves, 2, frame.reversed, random);
      break;
    case 4:
    case 5:
      overwriteNumber(buffer, frame.words, 4, frame.reversed, random);
      break;
    case 6:
      editVtableLength(buffer, frame, random);
      break;
    case 7: {
      const uint64_t little = 1 + below(random, std::min<uint64_t>(4, buffer.size()));
      buffer.resize(below(random, 2) == 0 ? place : buffer.size() - little);
      break;
    }
    case 8: {
      const uint64_t added = 1 + below(random, 16);
      buffer.resize(buffer.size() + added, static_cast<uint8_t>(random()));
      break;
    }
    case 9: {
      const uint64_t size = 1 + below(random, std::min<uint64_t>(16, buffer.size() - place));
      const Buffer slice(iterator, iterator + static_cast<Buffer::difference_type>(size));
      buffer.insert(iterator, slice.begin(), slice.end());
      break;
    }
    default:
      break;
  }
}

}  // namespace

std::vector<uint8_t> mutate(std::vector<uint8_t> buffer, std::mt19937_64& random) {
  const uint64_t injuries = 1 + below(random, 4);
  for (uint64_t i = 0; i < injuries && !buffer.empty(); ++i) {
    injure(buffer, random);
  }
  return buffer;
}

}  // namespace oracle
