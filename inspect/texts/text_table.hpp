// Columns of text, each as wide as its widest entry.
#pragma once

#include <string>
#include <vector>

#include "inspect/texts/ink.hpp"

namespace inspect {

class TextTable {
 public:
  explicit TextTable(std::vector<std::string> head) : rows_{std::move(head)} {}

  void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }

  // The head is bold. The last column is not padded.
  [[nodiscard]] std::string text(const Colors& colors) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace inspect
