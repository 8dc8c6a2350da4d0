#include "inspect/texts/text_table.hpp"

#include <algorithm>

namespace inspect {

std::string TextTable::text(const Colors& colors) const {
  std::vector<size_t> widths(rows_.front().size());
  for (const auto& row : rows_) {
    for (size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  std::string text;
  for (const auto& row : rows_) {
    std::string line;
    for (size_t column = 0; column < row.size(); ++column) {
      line += row[column];
      if (column + 1 < row.size()) {
        line.append(widths[column] + 2 - row[column].size(), ' ');
      }
    }
    text += &row == &rows_.front() ? colors.ink(Ink::Bold, line) : line;
    text += '\n';
  }
  return text;
}

}  // namespace inspect
