#include "inspect/reader/table_reader.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "inspect/bytes/memory_limit.hpp"
#include "inspect/messages/owned_record.hpp"
#include "inspect/reader/coverage.hpp"
#include "inspect/reader/findings.hpp"
#include "inspect/reader/meaning.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

// Result: Verdict, or Reading to explain every byte.
template <typename Result>
class TableReader {
 public:
  TableReader(std::span<const uint8_t> bytes, Result& result) : bytes_(bytes), found_(result) {}

  void readRoot(const Schema& schema) {
    const auto table = load<uint32_t>(0);
    found_.add(rootRange, table);
    const Path root;
    readTable(schema, table, {0, root});
  }

 private:
  // A word that points to something, and its path.
  struct Origin {
    uint32_t at;
    const Path& path;
  };

  struct Head {
    uint32_t table;
    uint32_t vtable;
    uint32_t length;
  };

  // Identifies a table that was read. The same bytes may be read as another record, or below a
  // table whose faults its holder ignores.
  using Key = std::tuple<const Schema*, uint64_t, bool>;

  struct Outcome {
    bool isGood;
    uint64_t memory;  // that the library allocates each time it decodes the table
  };

  [[nodiscard]] bool holds(uint64_t at, uint64_t size) const { return at + size <= bytes_.size(); }

  template <typename Integer>
  [[nodiscard]] Integer load(uint64_t at) const {
    return loadAs<Integer>(bytes_.data() + at);
  }

  bool fail(uint64_t at, uint32_t size, const Path& path, std::string text) {
    found_.addFault(static_cast<uint32_t>(at), size, path, std::move(text), tolerant_);
    return false;
  }

  [[nodiscard]] std::string ofBuffer() const {
    return " of a buffer of " + std::to_string(bytes_.size()) + " bytes";
  }

  // Whether the table is valid. A table that several words point to is read once.
  bool readTable(const Schema& schema, uint64_t table, const Origin& from) {
    const Key key{&schema, table, tolerant_};
    if (const auto known = tables_.find(key); known != tables_.end()) {
      found_.note([&] {
        return from.path.text() + " points to a table that was read before, at " +
               std::to_string(table);
      });
      found_.addMemory(known->second.memory);
      return known->second.isGood;
    }
    const uint64_t before = found_.memory();
    Head head{};
    const bool isGood = locate(table, from, head) && readSlots(schema, head, from.path);
    // Tables beyond these are read again.
    if (tables_.size() < memoryLimit / 512) {
      tables_[key] = {isGood, found_.memory() - before};
    }
    return isGood;
  }

  bool locate(uint64_t table, const Origin& from, Head& head) {
    const uint64_t largest = bytes_.size() - 4;
    if (table < 4 || table > largest) {
      return fail(from.at, 4, from.path,
                  "points to a table at " + std::to_string(table) + ", not in 4 to " +
                      std::to_string(largest));
    }
    const auto at = static_cast<uint32_t>(table);
    const auto offset = load<uint32_t>(at);
    const uint32_t vtable = at - offset;
    found_.add(vtableOffsetRange, at, from.path, offset, vtable);
    if (vtable < 4 || vtable > largest) {
      return fail(at, 4, from.path,
                  "points to a vtable at " + std::to_string(vtable) + ", not in 4 to " +
                      std::to_string(largest));
    }
    const uint32_t length = load<uint16_t>(vtable);
    found_.add(vtableLengthRange, vtable, from.path, length);
    if (!holds(vtable, length)) {
      return fail(vtable, 2, from.path,
                  "a vtable of " + std::to_string(length) + " bytes, but only " +
                      std::to_string(bytes_.size() - vtable) + " are left");
    }
    if (length >= 4) {
      found_.add(tableLengthRange, vtable + 2, from.path, load<uint16_t>(vtable + 2));
    } else {
      found_.note([&] {
        return named(from.path) + ": a vtable of " + std::to_string(length) + " bytes has no slots";
      });
    }
    head = {at, vtable, length};
    return true;
  }

  static std::string named(const Path& path) {
    return path.holder == nullptr ? "the root" : path.text();
  }

  bool readSlots(const Schema& schema, const Head& head, const Path& path) {
    bool isGood = true;
    uint32_t entryAt = head.vtable + 4;
    const uint32_t end = head.vtable + head.length;
    for (size_t index = 0; index < schema.slots.size() && entryAt + 2 <= end; ++index) {
      const Slot& slot = schema.slots[index];
      const uint32_t entry = load<uint16_t>(entryAt);
      const Path slotPath{&path, slot.name.data()};
      found_.add(entryRange, entryAt, slotPath, index, entry, head.table);
      isGood = (entry == 0 ||
                readSlot(schema, slot, uint64_t{head.table} + entry, {entryAt, slotPath})) &&
               isGood;
      entryAt += 2;
    }
    if constexpr (Findings<Result>::explains) {
      addUnknown(entryAt, end, schema.slots.size(), path);
    }
    return isGood;
  }

  // Entries after the last known slot. Many tables may share them, so they are explained once.
  void addUnknown(uint32_t at, uint32_t end, size_t firstSlot, const Path& path) {
    if (at >= end || !unknown_.insert(at).second) {
      return;
    }
    const uint32_t count = (end - at) / 2;
    if (count != 0) {
      found_.add(unknownEntriesRange, at, path, firstSlot, count);
    }
    if ((end - at) % 2 != 0) {
      found_.add(halfEntryRange, end - 1, path);
    }
  }

  bool readSlot(const Schema& schema, const Slot& slot, uint64_t at, const Origin& entry) {
    switch (slot.kind) {
      case Kind::Array:
      case Kind::Bytes:
        return readBytes(slot, at, entry);
      case Kind::Table: {
        const bool wasTolerant = tolerant_;
        const bool isIgnored = schema.style.nestedFailure == mesh::wire::NestedFailure::IsIgnored;
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
      return fail(entry.at, 2, entry.path,
                  "its " + std::to_string(slot.size) + " bytes at " + std::to_string(at) +
                      " pass the end" + ofBuffer());
    }
    uint64_t value = 0;
    std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(at), slot.size,
                reinterpret_cast<uint8_t*>(&value));
    found_.add(scalarRange, static_cast<uint32_t>(at), entry.path, slot.size, value);
    return true;
  }

  // Follows the offset word at `at` to `target`.
  bool follow(uint64_t at, const Origin& entry, uint64_t& target, bool isEntry = true) {
    if (!holds(at, 4)) {
      return fail(entry.at, isEntry ? 2 : 4, entry.path,
                  "its offset word at " + std::to_string(at) + " passes the end" + ofBuffer());
    }
    const auto offset = load<uint32_t>(at);
    target = at + offset;
    found_.add(wordRange, static_cast<uint32_t>(at), entry.path, offset, target);
    return target <= UINT32_MAX ||
           fail(at, 4, entry.path, "points to " + std::to_string(target) + ", beyond 32 bits");
  }

  bool readBytes(const Slot& slot, uint64_t at, const Origin& entry) {
    uint64_t target = 0;
    if (!follow(at, entry, target)) {
      return false;
    }
    if (!holds(target, 4)) {
      return fail(
          at, 4, entry.path,
          "points to a length at " + std::to_string(target) + ", past the end" + ofBuffer());
    }
    const auto length = load<uint32_t>(target);
    found_.add(lengthRange, static_cast<uint32_t>(target), entry.path, length);
    if (!holds(target + 4, length)) {
      return fail(target, 4, entry.path,
                  std::to_string(length) + " bytes, but only " +
                      std::to_string(bytes_.size() - target - 4) + " are left");
    }
    if (length != 0) {
      const auto contents = static_cast<uint32_t>(target + 4);
      found_.add(contentsRange, contents, entry.path, bytes_.subspan(contents, length));
    }
    if (slot.kind == Kind::Array && length != slot.size) {
      return fail(target, 4, entry.path,
                  std::to_string(length) + " bytes instead of " + std::to_string(slot.size));
    }
    found_.addMemory(slot.kind == Kind::Bytes ? length : 0);
    return true;
  }

  bool readNested(const Schema& nested, uint64_t at, const Origin& entry) {
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
                  "points to a count at " + std::to_string(vector) + ", past the end" + ofBuffer());
    }
    const auto count = load<uint32_t>(vector);
    found_.add(countRange, static_cast<uint32_t>(vector), entry.path, count);
    if (!holds(vector + 4, uint64_t{4} * count)) {
      return fail(vector, 4, entry.path,
                  std::to_string(count) + " items, whose offset words pass the end" + ofBuffer());
    }
    const uint64_t memory = uint64_t{slot.size} * count;
    if (memory > UINT32_MAX) {
      return fail(vector, 4, entry.path,
                  std::to_string(count) + " items of " + std::to_string(slot.size) +
                      " bytes exceed 32 bits");
    }
    found_.addMemory(memory);
    bool isGood = true;
    for (uint64_t item = 0; item < count; ++item) {
      const auto word = static_cast<uint32_t>(vector + 4 + 4 * item);
      const Path path{&entry.path, nullptr, item};
      isGood = readNested(*slot.nested, word, {word, path}) && isGood;
    }
    return isGood;
  }

  std::span<const uint8_t> bytes_;
  Findings<Result> found_;
  bool tolerant_ = false;  // inside a table whose faults its holder ignores
  std::map<Key, Outcome> tables_;
  std::set<uint32_t> unknown_;
};

template <typename Result>
Result read(const KnownMessage& message, std::span<const uint8_t> bytes) {
  Result result;
  if (bytes.size() < 4 || bytes.size() > INT32_MAX) {
    result.addFault({0, static_cast<uint32_t>(std::min<size_t>(bytes.size(), 4)), "",
                     "a message cannot have " + std::to_string(bytes.size()) + " bytes", false});
  } else {
    TableReader(bytes, result).readRoot(message.schema());
  }
  return result;
}

}  // namespace

Verdict judge(const KnownMessage& message, std::span<const uint8_t> bytes) {
  return read<Verdict>(message, bytes);
}

Reading readTable(const KnownMessage& message, std::span<const uint8_t> bytes) {
  auto reading = read<Reading>(message, bytes);
  coverBytes(bytes, reading);
  return reading;
}

}  // namespace inspect
