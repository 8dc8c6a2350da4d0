#include "table_reader.hpp"

#include <algorithm>
#include <map>

#include "coverage.hpp"
#include "owned_record.hpp"

namespace tool {
namespace {

using mesh::wire::Kind;
using mesh::wire::Record;
using mesh::wire::Slot;

// More items than this cannot have their offset words inside any buffer.
constexpr uint32_t largestVectorCount = 0x3FFFFFFF;

std::string number(uint64_t value) {
  return std::to_string(value);
}

class TableReader {
 public:
  TableReader(std::span<const uint8_t> bytes, Reading& reading)
      : bytes_(bytes), reading_(reading) {}

  void readRoot(const Record& record) {
    const auto table = load<uint32_t>(0);
    add({0, 4, Part::Root, "", "root", "table at " + number(table), table});
    readTable(record, table, {0, ""});
  }

 private:
  // A word that leads somewhere, and the slot it stands for.
  struct Origin {
    uint32_t at;
    std::string path;
  };

  struct Frame {
    uint32_t table;
    uint32_t vtable;
    uint32_t length;
  };

  [[nodiscard]] bool holds(uint64_t at, uint64_t size) const { return at + size <= bytes_.size(); }

  template <typename Integer>
  [[nodiscard]] Integer load(uint64_t at) const {
    return loadAs<Integer>(bytes_.data() + at);
  }

  void add(Range range) { reading_.ranges.push_back(std::move(range)); }

  bool fail(uint64_t at, uint32_t size, const std::string& path, std::string text) {
    reading_.addFault({static_cast<uint32_t>(at), size, path, std::move(text), tolerant_});
    return false;
  }

  [[nodiscard]] std::string ofBuffer() const {
    return " of a buffer of " + number(bytes_.size()) + " bytes";
  }

  // Whether the table is in order; a table that two words lead to is read once.
  bool readTable(const Record& record, uint64_t table, const Origin& from) {
    const auto [known, isNew] = tables_.try_emplace({&record, table}, false);
    if (!isNew) {
      reading_.addNote(from.path + " leads to a table that was read before, at " + number(table));
      return known->second;
    }
    Frame frame{};
    // The iterator may not be used behind this: tables within this one are put in.
    const bool isGood = locate(table, from, frame) && readSlots(record, frame, from.path);
    tables_[{&record, table}] = isGood;
    return isGood;
  }

  bool locate(uint64_t table, const Origin& from, Frame& frame) {
    const uint64_t largest = bytes_.size() - 4;
    if (table < 4 || table > largest) {
      return fail(
          from.at, 4, from.path,
          "leads to a table at " + number(table) + ", which is not from 4 to " + number(largest));
    }
    const auto at = static_cast<uint32_t>(table);
    const auto distance = load<uint32_t>(at);
    const uint32_t vtable = at - distance;
    add({at, 4, Part::Frame, from.path, "table: distance of its vtable",
         std::to_string(static_cast<int32_t>(distance)) + ": at " + number(vtable), vtable});
    if (vtable < 4 || vtable > largest) {
      return fail(
          at, 4, from.path,
          "leads to a vtable at " + number(vtable) + ", which is not from 4 to " + number(largest));
    }
    const uint32_t length = load<uint16_t>(vtable);
    add({vtable, 2, Part::Frame, from.path, "vtable: its length", number(length)});
    if (!holds(vtable, length)) {
      return fail(vtable, 2, from.path,
                  "a vtable of " + number(length) + " bytes where " +
                      number(bytes_.size() - vtable) + " are left");
    }
    if (length >= 4) {
      add({vtable + 2, 2, Part::Frame, from.path, "vtable: the table's length (not used)",
           number(load<uint16_t>(vtable + 2))});
    } else {
      reading_.addNote(named(from.path) + ": a vtable of " + number(length) + " bytes has no slot");
    }
    frame = {at, vtable, length};
    return true;
  }

  static std::string named(const std::string& path) { return path.empty() ? "the root" : path; }

  bool readSlots(const Record& record, const Frame& frame, const std::string& path) {
    bool isGood = true;
    uint32_t entryAt = frame.vtable + 4;
    const uint32_t end = frame.vtable + frame.length;
    for (size_t index = 0; entryAt + 2 <= end; ++index, entryAt += 2) {
      const uint32_t entry = load<uint16_t>(entryAt);
      if (index >= record.slots.size()) {
        add({entryAt, 2, Part::Unknown, path, "entry of slot " + number(index),
             number(entry) + ": unknown to this library"});
        continue;
      }
      const Slot& slot = record.slots[index];
      const std::string slotPath = (path.empty() ? "" : path + '.') + slot.name.data();
      add({entryAt, 2, Part::Entry, slotPath, "entry of slot " + number(index),
           entry == 0 ? "0: absent" : number(entry) + ": at " + number(frame.table + entry),
           entry == 0 ? -1 : int64_t{frame.table} + entry});
      isGood = (entry == 0 ||
                readSlot(record, slot, uint64_t{frame.table} + entry, {entryAt, slotPath})) &&
               isGood;
    }
    if (entryAt < end) {
      add({entryAt, end - entryAt, Part::Unknown, path, "vtable: half an entry", ""});
    }
    return isGood;
  }

  bool readSlot(const Record& record, const Slot& slot, uint64_t at, const Origin& entry) {
    switch (slot.kind) {
      case Kind::Array:
      case Kind::Bytes:
        return readBytes(slot, at, entry);
      case Kind::Table: {
        const bool wasTolerant = tolerant_;
        const bool isIgnored = record.style.nestedFailure == mesh::wire::NestedFailure::IsIgnored;
        tolerant_ = tolerant_ || isIgnored;
        const bool isGood = readNested(*slot.nested, at, entry);
        tolerant_ = wasTolerant;
        return isGood || isIgnored;
      }
      case Kind::Vector:
        return readVector(slot, at, entry);
      default:
        return readScalar(slot, at, entry);
    }
  }

  bool readScalar(const Slot& slot, uint64_t at, const Origin& entry) {
    if (!holds(at, slot.size)) {
      return fail(
          entry.at, 2, entry.path,
          "its " + number(slot.size) + " bytes at " + number(at) + " pass the end" + ofBuffer());
    }
    uint64_t value = 0;
    std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(at), slot.size,
                reinterpret_cast<uint8_t*>(&value));
    add({static_cast<uint32_t>(at), slot.size, Part::Scalar, entry.path, "value",
         numberText(value)});
    return true;
  }

  // The offset word at `at` to `target`, of which 4 bytes must be there.
  bool follow(uint64_t at, const Origin& entry, uint64_t& target, bool isEntry = true) {
    if (!holds(at, 4)) {
      return fail(entry.at, isEntry ? 2 : 4, entry.path,
                  "its offset word at " + number(at) + " passes the end" + ofBuffer());
    }
    const auto offset = load<uint32_t>(at);
    target = at + offset;
    add({static_cast<uint32_t>(at), 4, Part::Word, entry.path, "offset word",
         number(offset) + ": leads to " + number(target), static_cast<int64_t>(target)});
    return target <= UINT32_MAX ||
           fail(at, 4, entry.path, "leads to " + number(target) + ", past 32 bits");
  }

  bool readBytes(const Slot& slot, uint64_t at, const Origin& entry) {
    uint64_t target = 0;
    if (!follow(at, entry, target)) {
      return false;
    }
    if (!holds(target, 4)) {
      return fail(at, 4, entry.path,
                  "leads to a length at " + number(target) + ", past the end" + ofBuffer());
    }
    const auto length = load<uint32_t>(target);
    add({static_cast<uint32_t>(target), 4, Part::Length, entry.path, "length", number(length)});
    if (!holds(target + 4, length)) {
      return fail(
          target, 4, entry.path,
          number(length) + " bytes where " + number(bytes_.size() - target - 4) + " are left");
    }
    if (length != 0) {
      const auto contents = static_cast<uint32_t>(target + 4);
      add({contents, length, Part::Contents, entry.path, "contents",
           contentsText(bytes_.subspan(contents, length))});
    }
    if (slot.kind == Kind::Array && length != slot.size) {
      return fail(target, 4, entry.path,
                  number(length) + " bytes where " + number(slot.size) + " belong");
    }
    reading_.memory += slot.kind == Kind::Bytes ? length : 0;
    return true;
  }

  bool readNested(const Record& nested, uint64_t at, const Origin& entry) {
    uint64_t table = 0;
    return follow(at, entry, table) &&
           readTable(nested, table, {static_cast<uint32_t>(at), entry.path});
  }

  bool readVector(const Slot& slot, uint64_t at, const Origin& entry) {
    uint64_t vector = 0;
    if (!follow(at, entry, vector)) {
      return false;
    }
    if (!holds(vector, 4)) {
      return fail(at, 4, entry.path,
                  "leads to a count at " + number(vector) + ", past the end" + ofBuffer());
    }
    const auto count = load<uint32_t>(vector);
    add({static_cast<uint32_t>(vector), 4, Part::Length, entry.path, "count", number(count)});
    if (count > largestVectorCount || !holds(vector + 4, uint64_t{4} * count)) {
      return fail(vector, 4, entry.path,
                  number(count) + " items, whose words pass the end" + ofBuffer());
    }
    const uint64_t memory = uint64_t{slot.size} * count;
    if (memory > UINT32_MAX) {
      return fail(vector, 4, entry.path,
                  number(count) + " items of " + number(slot.size) + " bytes pass 32 bits");
    }
    reading_.memory += memory;
    bool isGood = true;
    for (uint64_t item = 0; item < count; ++item) {
      const auto word = static_cast<uint32_t>(vector + 4 + 4 * item);
      const Origin origin{word, entry.path + '[' + number(item) + ']'};
      isGood = readNested(*slot.nested, word, origin) && isGood;
    }
    return isGood;
  }

  std::span<const uint8_t> bytes_;
  Reading& reading_;
  bool tolerant_ = false;  // inside a table whose faults its holder ignores
  std::map<std::pair<const Record*, uint64_t>, bool> tables_;
};

}  // namespace

Reading readTable(const Message& message, std::span<const uint8_t> bytes) {
  Reading reading;
  if (bytes.size() < 4 || bytes.size() > INT32_MAX) {
    reading.faults.push_back({0, static_cast<uint32_t>(std::min<size_t>(bytes.size(), 4)), "",
                              number(bytes.size()) + " bytes are no message", false});
  } else {
    TableReader(bytes, reading).readRoot(message.record());
  }
  coverBytes(bytes, reading);
  return reading;
}

}  // namespace tool
