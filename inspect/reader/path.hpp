// The path of a table or field within a message.
#pragma once

#include <cstdint>
#include <string>

namespace inspect {

// One step from its holder, which must outlive it. Most paths are never shown, so only text() makes
// a string.
struct Path {
  const Path* holder = nullptr;  // null: this is the root
  const char* slot = nullptr;    // null: this is an item of a vector
  uint64_t item = 0;

  // "f1[2].f3"; empty for the root.
  [[nodiscard]] std::string text() const {
    if (holder == nullptr) {
      return {};
    }
    const std::string before = holder->text();
    if (slot == nullptr) {
      return before + '[' + std::to_string(item) + ']';
    }
    return before.empty() ? slot : before + '.' + slot;
  }
};

}  // namespace inspect
