// Where in a message a table or a field hangs.
#pragma once

#include <cstdint>
#include <string>

namespace tool {

// One step from its holder, which must outlive it. The text is made where somebody reads it.
struct Path {
  const Path* holder = nullptr;  // null: this is the root
  const char* slot = nullptr;    // null: this is an item of a vector
  uint64_t item = 0;

  // "f1[2].f3"; empty for the root.
  [[nodiscard]] std::string text() const {
    if (holder == nullptr) {
      return "";
    }
    const std::string before = holder->text();
    if (slot == nullptr) {
      return before + '[' + std::to_string(item) + ']';
    }
    return before.empty() ? slot : before + '.' + slot;
  }
};

}  // namespace tool
