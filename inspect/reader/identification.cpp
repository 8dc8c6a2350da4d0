#include "inspect/reader/identification.hpp"

#include <algorithm>
#include <climits>

#include "inspect/json/raw_table.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/own_encoding.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/schema/samples.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

constexpr size_t mostGroups = 3;

// What a byte of a frame says: little if it is a zero, as those are everywhere.
constexpr int forMatch = 6;
constexpr int forZero = 1;
constexpr int forMismatch = -5;
constexpr int forMissing = -1;
constexpr int forFault = -2;
constexpr size_t mostFaultsCounted = 5;
constexpr int mostForLength = 24;
// How far bytes that were put in or taken out move the rest.
constexpr int64_t furthest = 16;
constexpr uint32_t mostItems = 64;

// How much bytes are like a message of this library's writers. Predicts where the frame stands, and
// compares. What damage has moved is searched for nearby.
class Likeness {
 public:
  explicit Likeness(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  int ofCompact(const Schema& schema) {
    score_ = 0;
    isOpen_ = false;
    expect(0, 4, 4 + mesh::wire::vtableLength(schema));
    const int64_t end = takeTable(schema, 4);
    return isOpen_ ? score_ : score_ + forLength(end);
  }

  // The bytes that two images share are the frame. After one place, all may be moved.
  int ofFixed(const KnownMessage& message) const {
    const Bytes zeros = encodeFixed(sampleOf(message, 0));
    const Bytes ones = encodeFixed(sampleOf(message, 1));
    const auto length = static_cast<int64_t>(zeros.size());
    const int64_t moved = size() - length;
    const auto scoreAt = [&](int64_t at, int64_t by) {
      const auto index = static_cast<size_t>(at);
      return zeros[index] == ones[index] ? scoreOf(at + by, zeros[index]) : 0;
    };
    // Behind the place, all bytes are moved; before it, none.
    int score = 0;
    for (int64_t at = 0; at < length; ++at) {
      score += scoreAt(at, moved);
    }
    int best = std::abs(moved) <= furthest ? score : INT_MIN;
    for (int64_t at = 0; at < length; ++at) {
      score += scoreAt(at, 0) - scoreAt(at, moved);
      best = std::abs(moved) <= furthest ? std::max(best, score) : score;
    }
    return best + forLength(length);
  }

 private:
  [[nodiscard]] int64_t size() const { return static_cast<int64_t>(bytes_.size()); }

  [[nodiscard]] int scoreOf(int64_t at, uint8_t byte) const {
    return at < 0 || at >= size()                    ? forMissing
           : bytes_[static_cast<size_t>(at)] != byte ? forMismatch
           : byte != 0                               ? forMatch
                                                     : forZero;
  }

  [[nodiscard]] int scoreOf(int64_t at, uint32_t width, uint64_t value) const {
    int score = 0;
    for (uint32_t index = 0; index < width; ++index) {
      score += scoreOf(at + index, static_cast<uint8_t>(value >> 8 * index));
    }
    return score;
  }

  [[nodiscard]] int forLength(int64_t expected) const {
    return -static_cast<int>(std::min<int64_t>(std::abs(size() - expected), mostForLength));
  }

  void expect(int64_t at, uint32_t width, uint64_t value) { score_ += scoreOf(at, width, value); }

  // A number of the bytes; zeros stand behind their end.
  [[nodiscard]] uint32_t number(int64_t at, uint32_t width) const {
    uint32_t value = 0;
    for (uint32_t index = 0; index < width; ++index) {
      const int64_t from = at + index;
      value |= from < 0 || from >= size()
                   ? 0
                   : static_cast<uint32_t>(bytes_[static_cast<size_t>(from)]) << 8 * index;
    }
    return value;
  }

  // The place next to `at` where isHere() holds; `at` if there is none.
  template <typename IsHere>
  static int64_t nearest(int64_t at, IsHere isHere) {
    for (int64_t by = 0; by <= furthest; ++by) {
      for (const int64_t place : {at + by, at - by}) {
        if (isHere(place)) {
          return place;
        }
      }
    }
    return at;
  }

  // Returns where the bytes behind the table begin.
  int64_t takeTable(const Schema& schema, int64_t vtable) {
    const uint32_t length = mesh::wire::vtableLength(schema);
    const int64_t table = vtable + length;
    expect(vtable, 2, length);
    expect(table, 4, length);
    std::vector<uint32_t> entries(schema.slots.size());
    int64_t end = table + takeEntries(schema, vtable + 4, entries);
    int64_t leftOut = 0;
    for (size_t index = 0; index < schema.slots.size(); ++index) {
      if (entries[index] != 0 && schema.slots[index].kind != Kind::Scalar) {
        const int64_t next = takeTarget(schema.slots[index], table + entries[index], end);
        leftOut += schema.slots[index].nested != nullptr ? next - end : 0;
        end = next;
      }
    }
    if (!isOpen_) {
      expect(vtable + 2, 2, static_cast<uint64_t>(end - table - leftOut) & UINT16_MAX);
    }
    return end;
  }

  // Returns the size of the inline part.
  uint32_t takeEntries(const Schema& schema, int64_t at, std::vector<uint32_t>& entries) {
    uint32_t next = 4;
    const auto take = [&](bool scalars, bool words) {
      for (size_t index = 0; index < schema.slots.size(); ++index) {
        const Slot& slot = schema.slots[index];
        const int64_t place = at + 2 * static_cast<int64_t>(index);
        if (!(slot.kind == Kind::Scalar ? scalars : words)) {
          continue;
        }
        const bool isPresent =
            slot.kind == Kind::Array || slot.kind == Kind::Table || number(place, 2) != 0;
        expect(place, 2, isPresent ? next : 0);
        if (isPresent) {
          entries[index] = next;
          next += mesh::wire::footprint(slot);
        }
      }
    };
    if (schema.style.inlineOrder == mesh::wire::InlineOrder::Slots) {
      take(true, true);
    } else {
      take(true, false);
      take(false, true);
    }
    return next;
  }

  int64_t takeTarget(const Slot& slot, int64_t word, int64_t end) {
    if (isOpen_) {
      return end;
    }
    if (slot.kind == Kind::Table) {
      return takeNested(*slot.nested, word, end);
    }
    if (slot.kind == Kind::Array) {
      end = nearest(end, [&](int64_t at) { return number(at, 4) == slot.size; });
      expect(word, 4, static_cast<uint64_t>(end - word));
      expect(end, 4, slot.size);
      return end + 4 + slot.size;
    }
    expect(word, 4, static_cast<uint64_t>(end - word));
    const uint32_t count = number(end, 4);
    if (count > bytes_.size()) {
      score_ += 4 * forMismatch;
      return end + 4;
    }
    if (slot.kind == Kind::Bytes) {
      return end + 4 + count;
    }
    const int64_t words = end + 4;
    end = words + 4 * int64_t{count};
    for (uint32_t item = 0; item < count && !isOpen_; ++item) {
      end = takeNested(*slot.nested, words + 4 * int64_t{item}, end);
      isOpen_ = item == mostItems;
    }
    return end;
  }

  int64_t takeNested(const Schema& schema, int64_t word, int64_t end) {
    const uint32_t length = mesh::wire::vtableLength(schema);
    end = nearest(end, [&](int64_t at) {
      return number(at, 2) == length && number(at + length, 4) == length;
    });
    expect(word, 4, static_cast<uint64_t>(end + length - word));
    return takeTable(schema, end);
  }

  std::span<const uint8_t> bytes_;
  int score_ = 0;
  bool isOpen_ = false;  // more items follow than are taken
};

Candidate candidateOf(const KnownMessage& message, std::span<const uint8_t> bytes) {
  const Schema& schema = message.schema();
  const Verdict verdict = judge(message, bytes);
  Likeness likeness(bytes);
  int score = likeness.ofCompact(schema);
  if (message.isSentFixed()) {
    score = std::max(score, likeness.ofFixed(message));
  }
  score += forFault * static_cast<int>(std::min(verdict.faults.size(), mostFaultsCounted));
  const auto table = loadAs<uint32_t>(bytes.data());
  const uint32_t vtable = table - loadAs<uint32_t>(bytes.data() + table);
  const bool isSame =
      loadAs<uint16_t>(bytes.data() + vtable) / 2 == mesh::wire::vtableLength(schema) / 2;
  const Fit fit = !verdict.isAccepted()              ? Fit::Rejected
                  : isSame && verdict.faults.empty() ? Fit::Same
                  : isSame                           ? Fit::Damaged
                                                     : Fit::Reads;
  return {&message, fit, verdict.faults.size(), 0, score};
}

}  // namespace

std::vector<Candidate> candidatesFor(std::span<const uint8_t> bytes) {
  rawTable(bytes);
  std::vector<Candidate> all;
  for (const KnownMessage& message : messages()) {
    Candidate& candidate = all.emplace_back(candidateOf(message, bytes));
    if (candidate.fit == Fit::Same && isOwnEncoding(*candidate.message, bytes)) {
      candidate.fit = Fit::Exact;
    }
  }
  const bool hasExact = std::ranges::any_of(
      all, [](const Candidate& candidate) { return candidate.fit == Fit::Exact; });
  std::ranges::stable_sort(all, {}, [](const Candidate& candidate) {
    return std::pair(candidate.fit != Fit::Exact, -candidate.likeness);
  });
  std::vector<Candidate> best;
  for (Candidate& candidate : all) {
    if (hasExact && candidate.fit != Fit::Exact) {
      break;
    }
    const auto same = std::ranges::find_if(best, [&](const Candidate& known) {
      return mesh::wire::haveSameLayout(known.message->schema(), candidate.message->schema());
    });
    candidate.group = same != best.end() ? same->group
                      : best.empty()     ? 1
                                         : 1 + std::ranges::max(best, {}, &Candidate::group).group;
    if (hasExact || candidate.group <= mostGroups) {
      best.push_back(candidate);
    }
  }
  std::ranges::stable_sort(best, {}, &Candidate::group);
  return best;
}

Choice chooseMessage(const std::string& named, std::span<const uint8_t> bytes) {
  if (!named.empty()) {
    return {messageNamed(named), ""};
  }
  const std::vector<Candidate> candidates = candidatesFor(bytes);
  const Candidate& best = candidates.front();
  const std::string name(best.message->name);
  if (best.fit == Fit::Exact && candidates.size() == 1) {
    return {*best.message, "taken for " + name + ", the only message that is encoded like this"};
  }
  std::string others;
  for (const Candidate& candidate : candidates) {
    if (&candidate != &best && others.size() < 200) {
      others.append(others.empty() ? "" : ", ").append(candidate.message->name);
    }
  }
  return {*best.message, "taken for " + name + (best.fit == Fit::Exact ? "" : ", which fits best") +
                             "; it could be " + others + " too; --message selects another"};
}

}  // namespace inspect
