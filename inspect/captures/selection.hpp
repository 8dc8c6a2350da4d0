// Which tables of a capture a command works on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/captures/capture_file.hpp"
#include "inspect/messages/messages.hpp"

namespace inspect {

// A comparison of one value: "f1.f0 == 42".
//
// The path begins with a field of the record, or is another member of the table's JSON, as "extra".
// f1[2] is an item, f1[] is any item. The operators are == != < <= > >=. The value is a number,
// decimal or with 0x, or text as the JSON has it, with or without quotes.
class Condition {
 public:
  // Fails if the text is no comparison.
  explicit Condition(const std::string& text);

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] bool holds(const Json& table) const;
  // Whether tables of this message can have the value.
  [[nodiscard]] bool isAbout(const KnownMessage& message) const;

 private:
  enum class Operator { Equal, Different, Less, AtMost, Greater, AtLeast };

  [[nodiscard]] bool holdsFor(const Json& json, std::string_view rest) const;
  [[nodiscard]] bool compares(const Json& json) const;

  std::string path_;
  Operator operator_ = Operator::Equal;
  std::string value_;
  std::optional<uint64_t> number_;
};

struct Selection {
  const KnownMessage* message = nullptr;
  std::optional<uint32_t> source;
  std::optional<uint32_t> destination;
  uint64_t since = 0;
  uint64_t until = UINT64_MAX;
  std::optional<uint64_t> packet;
  std::vector<Condition> conditions;

  // Fails for a condition that no selected message can meet: its path has a mistake.
  void check() const;
  [[nodiscard]] bool takes(const Table& table) const;
};

// The next table that is selected. Reads no further than a selected packet.
std::optional<Table> nextSelected(CaptureReader& reader, const Selection& selection);

}  // namespace inspect
