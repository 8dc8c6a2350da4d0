#include "inspect/json/record_json.hpp"

#include <charconv>
#include <cstring>

#include "inspect/json/json_check.hpp"
#include "inspect/reader/reading.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

// The devices are little-endian: a scalar's bytes are the lowest of the number's.
void storeScalar(const Slot& slot, uint8_t* field, uint64_t value) {
  std::memcpy(field, &value, slot.size);
}

// Fills a record and its nested records from JSON.
class RecordFiller {
 public:
  RecordFiller(OwnedRecord& owner, ByteText form, uint64_t& memory)
      : owner_(owner), form_(form), memory_(memory) {}

  // An item of a vector may have the member "times".
  void fill(const Schema& schema, const Json& json, uint8_t* record, const std::string& path,
            bool isItem = false) {
    if (!json.is_object()) {
      fail(path, std::string("expected an object, not ") + json.type_name());
    }
    for (const auto& [name, value] : json.items()) {
      if (isItem && name == timesName) {
        continue;
      }
      const Slot* const slot = find(schema, name);
      const std::string member = path.empty() ? name : path + '.' + name;
      if (slot == nullptr) {
        fail(member, std::string(schema.name) + " has no such field; it has f0 to f" +
                         std::to_string(schema.slots.size() - 1));
      }
      fillSlot(*slot, value, record, member);
    }
  }

 private:
  static constexpr const char* timesName = "times";

  [[noreturn]] static void fail(const std::string& path, const std::string& text) {
    throw Failure(Cause::BadInput, (path.empty() ? "the record" : path) + ": " + text);
  }

  // The value if it is short, else its type.
  static std::string shortText(const Json& json) {
    constexpr size_t longest = 60;
    const std::string text =
        json.is_structured() ? "" : json.dump(-1, ' ', false, Json::error_handler_t::replace);
    return text.empty() || text.size() > longest ? json.type_name() : text;
  }

  static const Slot* find(const Schema& schema, std::string_view name) {
    for (const Slot& slot : schema.slots) {
      if (name == slot.name.data()) {
        return &slot;
      }
    }
    return nullptr;
  }

  void fillSlot(const Slot& slot, const Json& json, uint8_t* record, const std::string& path) {
    uint8_t* const field = record + slot.recordOffset;
    switch (slot.kind) {
      case Kind::Array: {
        const std::vector<uint8_t> bytes = parseBytes(json, path);
        if (bytes.size() != slot.size) {
          fail(path, "expected " + std::to_string(slot.size) + " bytes, not " +
                         std::to_string(bytes.size()));
        }
        std::ranges::copy(bytes, field);
        return;
      }
      case Kind::Bytes:
        return fillBytes(slot, parseBytes(json, path), record, path);
      case Kind::Table:
        return fill(*slot.nested, json, field, path);
      case Kind::Vector:
        return fillVector(slot, json, record, path);
      default:
        return storeScalar(slot, field, parseScalar(slot, json, path));
    }
  }

  uint8_t* addBlock(uint64_t size, const std::string& path) {
    memory_ += size;
    if (memory_ > memoryLimit) {
      failForMemory(path + ": up to here this record", memory_);
    }
    return owner_.addBlock(size);
  }

  void fillBytes(const Slot& slot, const std::vector<uint8_t>& bytes, uint8_t* record,
                 const std::string& path) {
    if (!bytes.empty()) {
      uint8_t* const block = addBlock(bytes.size(), path);
      std::ranges::copy(bytes, block);
      storeAs(record + slot.countOffset, static_cast<uint32_t>(bytes.size()));
      storeAs(record + slot.recordOffset, block);
    }
  }

  void fillVector(const Slot& slot, const Json& json, uint8_t* record, const std::string& path) {
    if (!json.is_array()) {
      fail(path, std::string("expected an array, not ") + json.type_name());
    }
    if (json.empty()) {
      return;
    }
    const auto pathOf = [&](size_t item) { return path + '[' + std::to_string(item) + ']'; };
    uint64_t count = 0;
    for (size_t item = 0; item < json.size(); ++item) {
      count += timesOf(json[item], pathOf(item));
      if (count > UINT32_MAX) {
        fail(path, "more than " + std::to_string(UINT32_MAX) + " items");
      }
    }
    uint8_t* items = addBlock(count * slot.size, path);
    storeAs(record + slot.countOffset, static_cast<uint32_t>(count));
    storeAs(record + slot.recordOffset, items);
    for (size_t item = 0; item < json.size(); ++item) {
      fill(*slot.nested, json[item], items, pathOf(item), true);
      const uint8_t* const filled = items;
      items += slot.size;
      for (uint64_t times = timesOf(json[item], path); times > 1; --times) {
        // The record's blocks belong to the whole, so that items may share them.
        std::copy_n(filled, slot.size, items);
        items += slot.size;
      }
    }
  }

  // For how many equal items an item stands.
  static uint64_t timesOf(const Json& item, const std::string& path) {
    if (!item.is_object() || !item.contains(timesName)) {
      return 1;
    }
    const Json& times = item.at(timesName);
    if (!times.is_number_unsigned() || times.get<uint64_t>() == 0 ||
        times.get<uint64_t>() > UINT32_MAX) {
      fail(path + '.' + timesName, "expected a whole number from 1 to " +
                                       std::to_string(UINT32_MAX) + ", not " + shortText(times));
    }
    return times.get<uint64_t>();
  }

  [[nodiscard]] std::vector<uint8_t> parseBytes(const Json& json, const std::string& path) const {
    if (!json.is_string()) {
      const char* const digits = form_ == ByteText::Base64 ? "base64" : "hexadecimal";
      fail(path,
           std::string("expected a string of ") + digits + " digits, not " + json.type_name());
    }
    try {
      return fromText(form_, json.get_ref<const std::string&>());
    } catch (const Failure& failure) {
      fail(path, failure.what());
    }
  }

  static uint64_t parseScalar(const Slot& slot, const Json& json, const std::string& path) {
    const uint64_t largest = UINT64_MAX >> (64 - 8 * slot.size);
    uint64_t value = 0;
    if (!parseNumber(json, value) || value > largest) {
      fail(path, "expected a whole number from 0 to " + std::to_string(largest) + ", not " +
                     shortText(json));
    }
    return value;
  }

  OwnedRecord& owner_;
  ByteText form_;
  uint64_t& memory_;
};

}  // namespace

bool parseNumber(const Json& json, uint64_t& value) {
  if (!json.is_string()) {
    value = json.is_number_unsigned() ? json.get<uint64_t>() : 0;
    return json.is_number_unsigned() ||
           (json.is_number_integer() && json.get<int64_t>() == 0);  // -0
  }
  const auto& text = json.get_ref<const std::string&>();
  const char* const end = text.data() + text.size();
  if (!text.starts_with("0x")) {
    return false;
  }
  const auto [stop, error] = std::from_chars(text.data() + 2, end, value, 16);
  return error == std::errc{} && stop == end;
}

Json toJson(const Schema& schema, const uint8_t* record, const JsonStyle& style) {
  Text text;
  writeRecord(text, schema, record, style);
  return Json::parse(text.view());
}

OwnedRecord fromJson(const KnownMessage& message, const Json& json, ByteText form,
                     uint64_t& memory) {
  OwnedRecord record(message);
  RecordFiller(record, form, memory).fill(message.schema(), json, record.data(), "");
  return record;
}

OwnedRecord fromJson(const KnownMessage& message, const Json& json) {
  uint64_t memory = 0;
  return fromJson(message, json, ByteText::Hex, memory);
}

std::vector<uint8_t> encodeJson(const KnownMessage& message, std::string_view json, ByteText form,
                                Form arrangement) {
  uint64_t memory = 0;
  const Json parsed = parseJson(json, memory);
  const OwnedRecord record = fromJson(message, parsed, form, memory);
  return encode(record, arrangement, memory);
}

Json parseJson(std::string_view text) {
  checkJson(text);
  return Json::parse(text);
}

Json parseJson(std::string_view text, uint64_t& memory) {
  constexpr uint64_t ofValue = 160;  // with its name, and its place in the object
  memory += text.size() + ofValue * checkJson(text);
  if (memory > memoryLimit) {
    failForMemory("this JSON", memory);
  }
  return Json::parse(text);
}

}  // namespace inspect
