#include "inspect/texts/difference.hpp"

#include <algorithm>

#include "inspect/bytes/hex.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/range_walk.hpp"
#include "inspect/reader/table_reader.hpp"

namespace inspect {
namespace {

// Walks two values side by side.
class Comparison {
 public:
  void compare(const Json* one, const Json* other, const std::string& path) {
    const Json* const any = one != nullptr ? one : other;
    if (any->is_object()) {
      for (const auto& [name, value] : any->items()) {
        compare(member(one, name), member(other, name), path.empty() ? name : path + '.' + name);
      }
    } else if (any->is_array()) {
      const size_t count = std::max(size(one), size(other));
      for (size_t item = 0; item < count; ++item) {
        compare(element(one, item), element(other, item), path + '[' + std::to_string(item) + ']');
      }
    } else if (one == nullptr || other == nullptr || *one != *other) {
      found.push_back({path, text(one), text(other)});
    }
  }

  std::vector<FieldDifference> found;

 private:
  static const Json* member(const Json* json, const std::string& name) {
    return json == nullptr ? nullptr : &json->at(name);
  }
  static const Json* element(const Json* json, size_t index) {
    return json == nullptr || index >= json->size() ? nullptr : &json->at(index);
  }
  static size_t size(const Json* json) { return json == nullptr ? 0 : json->size(); }
  static std::string text(const Json* json) { return json == nullptr ? "" : json->dump(); }
};

}  // namespace

std::vector<FieldDifference> fieldDifferences(const Json& one, const Json& other) {
  Comparison comparison;
  comparison.compare(&one, &other, "");
  return comparison.found;
}

std::vector<ByteDifference> byteDifferences(std::span<const uint8_t> one,
                                            std::span<const uint8_t> other,
                                            const Reading& readingOfOne) {
  std::vector<ByteDifference> found;
  const auto length = static_cast<uint32_t>(std::min(one.size(), other.size()));
  RangeWalk ranges(readingOfOne.ranges);
  for (uint32_t at = 0; at < length;) {
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
  // A short member becomes values, a difference and its JSON, each of about a hundred bytes.
  const uint64_t forText = memoryLimit / 64;
  const auto record = [&](std::span<const uint8_t> bytes) {
    return toJson(message.schema(), decode(message, bytes).data(), ByteText::Hex,
                  memoryLimit - forText);
  };
  const Json first = record(one);
  const Json second = record(other);
  return differenceJson(fieldDifferences(first, second),
                        byteDifferences(one, other, readTable(message, one)), one.size(),
                        other.size());
}

}  // namespace inspect
