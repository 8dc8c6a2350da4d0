#include "inspect/texts/difference.hpp"

#include <algorithm>

#include "inspect/bytes/hex.hpp"
#include "inspect/json/message_text.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/range_walk.hpp"
#include "inspect/reader/table_reader.hpp"

namespace inspect {
namespace {

// Walks two values side by side.
class MessageComparison {
 public:
  void compare(const Json* one, const Json* other, const std::string& path) {
    const Json* const any = one != nullptr ? one : other;
    const bool areAlike =
        one == nullptr || other == nullptr ||
        (one->is_object() == other->is_object() && one->is_array() == other->is_array());
    if (areAlike && any->is_object()) {
      compareMembers(one, other, path);
    } else if (areAlike && any->is_array()) {
      compareItems(Items(one), Items(other), path);
    } else if ((one == nullptr || other == nullptr || *one != *other) &&
               found.size() < mostDifferences) {
      found.push_back({path, text(one), text(other)});
    }
  }

  std::vector<FieldDifference> found;

 private:
  // Walks the items of an array, of which one may stand for many.
  class Items {
   public:
    explicit Items(const Json* array) : array_(array) { take(); }

    [[nodiscard]] const Json* item() const { return left_ == 0 ? nullptr : &array_->at(index_); }
    // How many items are equal to this one, itself included; 0 at the end.
    [[nodiscard]] uint64_t left() const { return left_; }

    void skip(uint64_t count) {
      left_ -= std::min(left_, count);
      if (left_ == 0 && array_ != nullptr && index_ < array_->size()) {
        ++index_;
        take();
      }
    }

   private:
    void take() {
      if (array_ != nullptr && index_ < array_->size()) {
        left_ = array_->at(index_).value("times", uint64_t{1});
      }
    }

    const Json* array_;
    size_t index_ = 0;
    uint64_t left_ = 0;
  };

  // The members are the same ones, unless two schemas describe the message.
  void compareMembers(const Json* one, const Json* other, const std::string& path) {
    const auto pathOf = [&path](const std::string& name) {
      return path.empty() ? name : path + '.' + name;
    };
    for (const auto& [name, value] : (one != nullptr ? one : other)->items()) {
      if (name != "times") {
        compare(member(one, name), member(other, name), pathOf(name));
      }
    }
    if (one != nullptr && other != nullptr) {
      for (const auto& [name, value] : other->items()) {
        if (name != "times" && !one->contains(name)) {
          compare(nullptr, &value, pathOf(name));
        }
      }
    }
  }

  void compareItems(Items one, Items other, const std::string& path) {
    for (uint64_t index = 0; one.left() != 0 || other.left() != 0;) {
      const uint64_t count = one.left() == 0     ? other.left()
                             : other.left() == 0 ? one.left()
                                                 : std::min(one.left(), other.left());
      std::string number = std::to_string(index);
      if (count > 1) {
        number.append("..").append(std::to_string(index + count - 1));
      }
      compare(one.item(), other.item(), path + '[' + number + ']');
      one.skip(count);
      other.skip(count);
      index += count;
    }
  }

  static const Json* member(const Json* json, const std::string& name) {
    const bool isThere = json != nullptr && json->contains(name);
    return isThere ? &json->at(name) : nullptr;
  }
  static std::string text(const Json* json) { return json == nullptr ? "" : json->dump(); }
};

}  // namespace

std::vector<FieldDifference> fieldDifferences(const Json& one, const Json& other) {
  MessageComparison comparison;
  comparison.compare(&one, &other, "");
  return comparison.found;
}

Json recordJson(const KnownMessage& message, std::span<const uint8_t> bytes, bool isWhole,
                uint64_t& memory) {
  const JsonStyle style{.isWhole = isWhole};
  refuseLongText(message.schema(), bytes, style);
  Text text(memory);
  writeMessage(text, message.schema(), bytes, style);
  return parseJson(text.view(), memory);
}

std::vector<ByteDifference> byteDifferences(std::span<const uint8_t> one,
                                            std::span<const uint8_t> other,
                                            const Reading& readingOfOne) {
  std::vector<ByteDifference> found;
  const auto length = static_cast<uint32_t>(std::min(one.size(), other.size()));
  RangeWalk ranges(readingOfOne.ranges);
  for (uint32_t at = 0; at < length && found.size() < mostDifferences;) {
    if (one[at] == other[at]) {
      ++at;
      continue;
    }
    const Range* const range = ranges.at(at);
    uint32_t end = at + 1;
    while (end < length && one[end] != other[end] && ranges.at(end) == range) {
      ++end;
    }
    std::string meaning;
    if (range != nullptr) {
      meaning.append(range->path).append(range->path.empty() ? "" : " ").append(range->meaning);
    }
    found.push_back({at, toHex(one.subspan(at, end - at)), toHex(other.subspan(at, end - at)),
                     std::move(meaning)});
    at = end;
  }
  return found;
}

Json differenceJson(const std::vector<FieldDifference>& fields,
                    const std::vector<ByteDifference>& bytes, size_t firstLength,
                    size_t secondLength) {
  Json json = {{"firstLength", firstLength},
               {"secondLength", secondLength},
               {"fields", Json::array()},
               {"bytes", Json::array()}};
  const auto value = [](const std::string& text) {
    return text.empty() ? Json() : parseJson(text);
  };
  for (const FieldDifference& field : fields) {
    json["fields"].push_back(
        {{"path", field.path}, {"first", value(field.one)}, {"second", value(field.other)}});
  }
  for (const ByteDifference& difference : bytes) {
    json["bytes"].push_back({{"at", difference.at},
                             {"meaning", difference.meaning},
                             {"first", difference.one},
                             {"second", difference.other}});
  }
  return json;
}

Json differenceJson(const KnownMessage& message, std::span<const uint8_t> one,
                    std::span<const uint8_t> other) {
  uint64_t memory = memoryLimit / 2;
  const Json first = recordJson(message, one, true, memory);
  const Json second = recordJson(message, other, true, memory);
  return differenceJson(fieldDifferences(first, second),
                        byteDifferences(one, other, readTable(message, one)), one.size(),
                        other.size());
}

}  // namespace inspect
