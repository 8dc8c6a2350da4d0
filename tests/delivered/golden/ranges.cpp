#include "delivered/golden/ranges.hpp"

#include <algorithm>

#include "oracle/values/text.hpp"

namespace golden {
namespace {

using oracle::joined;
using std::to_string;

constexpr uint64_t slotsInARow = 8;

class Walk {
 public:
  Walk(const std::vector<uint8_t>& bytes, bool reversed) : bytes_(bytes), reversed_(reversed) {}

  std::vector<Range> over(const oracle::Description& message) {
    const uint64_t root = number(0, 4);
    add(0, 4, joined({"root: ", to_string(root)}));
    overTable(message, root, "");
    return withPadding();
  }

 private:
  uint64_t number(uint64_t position, uint32_t width) const {
    uint64_t result = 0;
    for (uint32_t index = 0; index < width; ++index) {
      const uint32_t significance = reversed_ ? width - 1 - index : index;
      result |= uint64_t{bytes_.at(position + index)} << (8 * significance);
    }
    return result;
  }

  void add(uint64_t begin, uint64_t size, std::string meaning) {
    if (size > 0 && !isKnown(begin)) {
      ranges_.push_back({begin, size, std::move(meaning)});
    }
  }

  // In the fixed arrangement a nested image's root word is its holder's offset word.
  bool isKnown(uint64_t begin) const {
    return std::any_of(ranges_.begin(), ranges_.end(),
                       [begin](const Range& range) { return range.begin == begin; });
  }

  void overTable(const oracle::Description& message, uint64_t table, const std::string& path) {
    const std::string of = path.empty() ? "" : joined({" of ", path});
    const uint64_t distance = number(table, 4);
    const uint64_t vtable = (table - distance) & 0xFFFFFFFF;
    add(vtable, 4,
        joined({"vtable", of, ": ", to_string(number(vtable, 2)), " bytes, table ",
                to_string(number(vtable + 2, 2))}));
    overEntries(message, vtable, of);
    add(table, 4, joined({"vtable offset", of, ": ", to_string(static_cast<int32_t>(distance))}));
    for (size_t slot = 0; slot < message.fields.size(); ++slot) {
      const uint64_t entry = number(vtable + 4 + 2 * slot, 2);
      if (entry != 0) {
        overField(message.fields[slot], table + entry,
                  joined({path, path.empty() ? "" : ".", message.fields[slot].name}));
      }
    }
  }

  void overEntries(const oracle::Description& message, uint64_t vtable, const std::string& of) {
    const size_t slots = message.fields.size();
    for (size_t first = 0; first < slots; first += slotsInARow) {
      const size_t count = std::min<size_t>(slotsInARow, slots - first);
      const std::string which =
          count == 1 ? joined({"slot ", to_string(first)})
                     : joined({"slots ", to_string(first), " to ", to_string(first + count - 1)});
      std::string meaning = joined({which, of, ":"});
      for (size_t slot = first; slot < first + count; ++slot) {
        meaning.append(joined({" ", to_string(number(vtable + 4 + 2 * slot, 2))}));
      }
      add(vtable + 4 + 2 * first, 2 * count, meaning);
    }
  }

  void overField(const oracle::Field& field, uint64_t position, const std::string& path) {
    if (oracle::isScalar(field.kind)) {
      add(position, field.size, path);
      return;
    }
    const uint64_t target = overWord(position, path);
    if (field.kind == oracle::Kind::Table) {
      overTable(*field.nested, target, path);
      return;
    }
    const uint64_t count = number(target, 4);
    if (field.kind == oracle::Kind::Vector) {
      add(target, 4, joined({path, ": count ", to_string(count)}));
      for (uint64_t item = 0; item < count; ++item) {
        const std::string name = joined({path, "[", to_string(item), "]"});
        overTable(*field.nested, overWord(target + 4 + 4 * item, name), name);
      }
      return;
    }
    add(target, 4, joined({path, ": length ", to_string(count)}));
    add(target + 4, count, path);
  }

  uint64_t overWord(uint64_t position, const std::string& path) {
    const uint64_t word = number(position, 4);
    add(position, 4, joined({path, ": offset ", to_string(word)}));
    return position + word;
  }

  std::vector<Range> withPadding() {
    std::sort(ranges_.begin(), ranges_.end(),
              [](const Range& left, const Range& right) { return left.begin < right.begin; });
    std::vector<Range> all;
    uint64_t end = 0;
    for (const Range& range : ranges_) {
      if (range.begin < end) {
        oracle::misuse("two ranges of a message overlap");
      }
      if (range.begin > end) {
        all.push_back({end, range.begin - end, "padding"});
      }
      all.push_back(range);
      end = range.begin + range.size;
    }
    if (end < bytes_.size()) {
      all.push_back({end, bytes_.size() - end, "padding"});
    }
    return all;
  }

  const std::vector<uint8_t>& bytes_;
  bool reversed_;
  std::vector<Range> ranges_;
};

}  // namespace

std::vector<Range> rangesOf(const oracle::Description& message, const std::vector<uint8_t>& bytes,
                            bool reversed) {
  return Walk(bytes, reversed).over(message);
}

}  // namespace golden
