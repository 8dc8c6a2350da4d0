#include "inspect/texts/html_page.hpp"

#include <algorithm>
#include <set>

#include "inspect/bytes/hex.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/reader/range_walk.hpp"
#include "inspect/texts/html_template.hpp"

namespace inspect {
namespace {

// A browser draws these in a second or two.
constexpr size_t mostRangesShown = 10'000;
constexpr size_t mostRowsShown = 4096;

constexpr uint32_t bytesInARow = 16;
constexpr uint32_t beginningShown = 64;

const char* partName(Part part) {
  static constexpr const char* names[] = {"root",   "head",     "entry",   "scalar",  "word",
                                          "length", "contents", "unknown", "padding", "unread"};
  return names[static_cast<int>(part)];
}

// Selects the rows of bytes to draw.
class Rows {
 public:
  Rows(const Reading& reading, std::span<const uint8_t> bytes, bool isWhole)
      : bytes_(bytes), isWhole_(isWhole), walk_(reading.ranges) {
    for (const Fault& fault : reading.faults) {
      for (uint32_t row = fault.at / bytesInARow;
           uint64_t{row} * bytesInARow < uint64_t{fault.at} + fault.size; ++row) {
        faulty_.insert(row * bytesInARow);
      }
    }
  }

  // Joins neighbouring rows, up to `end`.
  Json pieces(uint32_t end) {
    std::vector<std::pair<uint32_t, uint32_t>> found;
    size_t shown = 0;
    for (uint32_t row = 0; row < end && !isCut; row += bytesInARow) {
      const uint32_t rowEnd = std::min(row + bytesInARow, end);
      if (isHidden(row, rowEnd)) {
        isShortened = true;
      } else if (shown++ == mostRowsShown) {
        isCut = true;
      } else if (!found.empty() && found.back().second == row) {
        found.back().second = rowEnd;
      } else {
        found.emplace_back(row, rowEnd);
      }
    }
    Json pieces = Json::array();
    for (const auto& [at, pieceEnd] : found) {
      pieces.push_back({{"at", at}, {"hex", toHex(bytes_.subspan(at, pieceEnd - at))}});
    }
    return pieces;
  }

  bool isShortened = false;  // long contents are shortened
  bool isCut = false;        // after the rows shown

 private:
  // Whether the row lies within one range, after its beginning.
  bool isHidden(uint32_t row, uint32_t end) {
    const Range* const range = walk_.at(row);
    bool isOfOne = true;
    for (uint32_t at = row + 1; at < end; ++at) {
      isOfOne = walk_.at(at) == range && isOfOne;
    }
    return !isWhole_ && isOfOne && range != nullptr && row - range->at >= beginningShown &&
           !faulty_.contains(row);
  }

  std::span<const uint8_t> bytes_;
  bool isWhole_;
  RangeWalk walk_;
  std::set<uint32_t> faulty_;
};

Json rangesOf(const Reading& reading, size_t count) {
  Json ranges = Json::array();
  for (const Range& range : std::span(reading.ranges).first(count)) {
    ranges.push_back({{"at", range.at},
                      {"size", range.size},
                      {"part", partName(range.part)},
                      {"path", range.path},
                      {"meaning", range.meaning},
                      {"value", range.value},
                      {"target", range.target}});
  }
  return ranges;
}

Json faultsOf(const Reading& reading) {
  Json faults = Json::array();
  for (const Fault& fault : reading.faults) {
    faults.push_back({{"at", fault.at},
                      {"size", fault.size},
                      {"text", faultText(fault)},
                      {"tolerated", fault.isTolerated}});
  }
  return faults;
}

Json dataOf(const KnownMessage& message, const Reading& reading, std::span<const uint8_t> bytes,
            bool isWhole) {
  const size_t count = std::min(reading.ranges.size(), mostRangesShown);
  const bool hasMoreRanges = count < reading.ranges.size();
  const auto end = hasMoreRanges ? reading.ranges[count].at : static_cast<uint32_t>(bytes.size());
  Rows rows(reading, bytes, isWhole);
  Json pieces = rows.pieces(end);
  std::vector<std::string> notes = reading.notes;
  if (rows.isShortened) {
    notes.emplace_back("long contents are shortened; --all shows them");
  }
  if (rows.isCut || hasMoreRanges) {
    notes.push_back("the page ends early: it has " + std::to_string(count) + " of " +
                    std::to_string(reading.ranges.size()) + " ranges and at most " +
                    std::to_string(mostRowsShown * bytesInARow) +
                    " bytes; explain without --html shows the rest");
  }
  return {{"message", message.name},
          {"accepted", reading.isAccepted()},
          {"length", bytes.size()},
          {"pieces", std::move(pieces)},
          {"faults", faultsOf(reading)},
          {"ranges", rangesOf(reading, count)},
          {"faultCount", faultCountText(reading)},
          {"notes", notes}};
}

// Escapes <, so that no text ends the script.
std::string escaped(const std::string& text) {
  std::string safe;
  safe.reserve(text.size());
  for (const char each : text) {
    each == '<' ? safe += "\\u003c" : safe += each;
  }
  return safe;
}

}  // namespace

std::string htmlPage(const KnownMessage& message, const Reading& reading,
                     std::span<const uint8_t> bytes, bool isWhole) {
  const std::string json =
      dataOf(message, reading, bytes, isWhole).dump(-1, ' ', true, Json::error_handler_t::replace);
  return std::string(htmlHead).append(escaped(json)).append(htmlTail);
}

}  // namespace inspect
