#include "inspect/reader/coverage.hpp"

#include <algorithm>
#include <tuple>

namespace inspect {
namespace {

// Nobody reads more of these notes.
constexpr int mostOverlapsNoted = 5;

Range unreadRange(std::span<const uint8_t> bytes, uint32_t at, uint32_t size, bool isCut) {
  if (isCut) {
    return {at, size, Part::Unread, "", "not explained", ""};
  }
  const auto unread = bytes.subspan(at, size);
  const bool isZero = std::ranges::all_of(unread, [](uint8_t byte) { return byte == 0; });
  return isZero ? Range{at, size, Part::Padding, "", "padding", ""}
                : Range{at, size, Part::Unread, "", "not read", ""};
}

}  // namespace

void coverBytes(std::span<const uint8_t> bytes, Reading& reading) {
  std::vector<Range>& ranges = reading.ranges;
  std::ranges::stable_sort(ranges, {}, [](const Range& range) {
    return std::tuple{range.at, UINT32_MAX - range.size};
  });
  // In a fixed image, the root word of a nested table is also its holder's offset word: one word,
  // read twice.
  std::vector<Range> unread;
  uint32_t end = 0;
  int overlaps = 0;
  for (const Range& range : ranges) {
    if (range.at > end) {
      unread.push_back(unreadRange(bytes, end, range.at - end, reading.isCut));
    } else if (range.at < end && ++overlaps <= mostOverlapsNoted) {
      reading.notes.push_back("byte " + std::to_string(range.at) + " is read a second time, as " +
                              (range.path.empty() ? "" : range.path + " ") + range.meaning);
    }
    end = std::max(end, range.at + range.size);
  }
  const auto length = static_cast<uint32_t>(bytes.size());
  if (end < length) {
    unread.push_back(unreadRange(bytes, end, length - end, reading.isCut));
  }
  if (overlaps > mostOverlapsNoted) {
    reading.notes.push_back(std::to_string(overlaps - mostOverlapsNoted) +
                            " more ranges are read a second time");
  }
  if (reading.isCut) {
    reading.notes.push_back("only " + std::to_string(mostRanges()) + " ranges are explained");
  }
  ranges.insert(ranges.end(), unread.begin(), unread.end());
  std::ranges::stable_sort(ranges, {}, &Range::at);
}

}  // namespace inspect
