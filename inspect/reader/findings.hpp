// Collects what a reader finds, in a Verdict or a Reading.
#pragma once

#include <algorithm>
#include <type_traits>

#include "inspect/reader/path.hpp"
#include "inspect/reader/reading.hpp"

namespace inspect {

template <typename Result>
class Findings {
 public:
  static constexpr bool explains = std::is_same_v<Result, Reading>;

  explicit Findings(Result& result) : result_(result) {}

  // Makes a range only for a Reading.
  template <typename Make, typename... Arguments>
  void add(Make make, const Arguments&... arguments) {
    if constexpr (explains) {
      if (result_.ranges.size() < mostRanges()) {
        result_.ranges.push_back(make(arguments...));
      } else {
        result_.isCut = true;
      }
    }
  }

  template <typename MakeNote>
  void note(MakeNote makeNote) {
    if constexpr (explains) {
      if (result_.takesNote()) {
        result_.notes.push_back(makeNote());
      }
    }
  }

  void addFault(uint32_t at, uint32_t size, const Path& path, std::string text, bool isTolerated) {
    result_.addFault({at, size, path.text(), std::move(text), isTolerated});
  }

  [[nodiscard]] uint64_t memory() const { return result_.memory; }
  void addMemory(uint64_t size) { result_.memory += std::min(size, UINT64_MAX - result_.memory); }

 private:
  Result& result_;
};

}  // namespace inspect
