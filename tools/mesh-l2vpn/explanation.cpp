#include "explanation.hpp"

#include <algorithm>

#include "hex.hpp"

namespace tool {
namespace {

constexpr uint32_t bytesOnALine = 8;
constexpr uint32_t linesOfContents = 4;

Ink inkOf(Part part) {
  switch (part) {
    case Part::Root:
    case Part::Frame:
      return Ink::Blue;
    case Part::Entry:
      return Ink::Cyan;
    case Part::Scalar:
    case Part::Contents:
      return Ink::Green;
    case Part::Word:
    case Part::Length:
      return Ink::Magenta;
    case Part::Padding:
      return Ink::Dim;
    case Part::Unknown:
    case Part::Unread:
      return Ink::Yellow;
  }
  return Ink::Plain;
}

std::string padded(std::string text, size_t width) {
  text.append(width - std::min(width, text.size()), ' ');
  return text;
}

class Explainer {
 public:
  Explainer(const Reading& reading, std::span<const uint8_t> bytes, const Session& session)
      : reading_(reading), bytes_(bytes), session_(session) {
    for (const Range& range : reading.ranges) {
      pathWidth_ = std::max(pathWidth_, range.path.size());
      meaningWidth_ = std::max(meaningWidth_, range.meaning.size());
    }
    positionWidth_ = std::to_string(bytes.size()).size();
  }

  std::string explain(bool isWhole) {
    std::string text;
    for (const Range& range : reading_.ranges) {
      text += rangeText(range, isWhole) + faultsAt(range);
    }
    // What is too short to have a range.
    if (reading_.ranges.empty()) {
      for (const Fault& fault : reading_.faults) {
        text += mark(fault);
      }
    }
    return text;
  }

 private:
  [[nodiscard]] std::string rangeText(const Range& range, bool isWhole) const {
    const uint32_t lines = (range.size + bytesOnALine - 1) / bytesOnALine;
    const uint32_t shown = isWhole ? lines : std::min(lines, linesOfContents);
    std::string text;
    for (uint32_t line = 0; line < shown; ++line) {
      const uint32_t at = range.at + line * bytesOnALine;
      const std::string hex =
          spaced(bytes_.subspan(at, std::min(bytesOnALine, range.at + range.size - at)));
      const Ink ink = inkOf(range.part);
      text += rightAligned(at) + "  ";
      text += line == 0 ? session_.ink(ink, padded(hex, 3 * bytesOnALine - 1)) + meaningText(range)
                        : session_.ink(ink, hex);
      text += '\n';
    }
    if (shown < lines) {
      text += std::string(positionWidth_ + 2, ' ') + "... " +
              std::to_string(range.size - shown * bytesOnALine) + " bytes more\n";
    }
    return text;
  }

  [[nodiscard]] std::string meaningText(const Range& range) const {
    const std::string text = "  " + padded(range.path, pathWidth_) + "  ";
    return range.value.empty() ? text + range.meaning
                               : text + padded(range.meaning, meaningWidth_) + "  " + range.value;
  }

  [[nodiscard]] std::string rightAligned(uint32_t at) const {
    const std::string number = std::to_string(at);
    return std::string(positionWidth_ - number.size(), ' ') + number;
  }

  static std::string spaced(std::span<const uint8_t> bytes) {
    std::string text;
    for (const uint8_t& byte : bytes) {
      text.append(text.empty() ? "" : " ").append(toHex({&byte, 1}));
    }
    return text;
  }

  // Faults are marked under the range that they begin in, once.
  std::string faultsAt(const Range& range) {
    std::string text;
    for (const Fault& fault : reading_.faults) {
      if (fault.at == range.at && std::ranges::find(marked_, &fault) == marked_.end()) {
        marked_.push_back(&fault);
        text += mark(fault);
      }
    }
    return text;
  }

  [[nodiscard]] std::string mark(const Fault& fault) const {
    return std::string(positionWidth_ + 2, ' ') +
           session_.ink(fault.isTolerated ? Ink::Yellow : Ink::Red, "^^ " + faultText(fault)) +
           '\n';
  }

  const Reading& reading_;
  std::span<const uint8_t> bytes_;
  const Session& session_;
  size_t pathWidth_ = 0;
  size_t meaningWidth_ = 0;
  size_t positionWidth_ = 0;
  std::vector<const Fault*> marked_;
};

}  // namespace

std::string explain(const Reading& reading, std::span<const uint8_t> bytes, bool isWhole,
                    const Session& session) {
  return Explainer(reading, bytes, session).explain(isWhole);
}

}  // namespace tool
