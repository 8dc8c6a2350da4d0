#include "inspect/texts/explanation.hpp"

#include <algorithm>

#include "inspect/bytes/hex.hpp"

namespace inspect {
namespace {

constexpr uint32_t bytesOnALine = 8;
constexpr uint32_t linesOfContents = 4;

// Of ranges that are alike, so many are shown before the others are counted.
constexpr size_t shownRepeated = 4;
constexpr size_t mostRepeated = 8;

Ink inkOf(Part part) {
  switch (part) {
    case Part::Root:
    case Part::Head:
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
  Explainer(const Reading& reading, std::span<const uint8_t> bytes, const Colors& colors, Text& out)
      : reading_(reading), bytes_(bytes), colors_(colors), out_(out) {
    for (const Range& range : reading.ranges) {
      pathWidth_ = std::max(pathWidth_, range.path.size());
      meaningWidth_ = std::max(meaningWidth_, range.meaning.size());
    }
    positionWidth_ = std::to_string(bytes.size()).size();
    for (const Fault& fault : reading.faults) {
      faults_.push_back(&fault);
    }
    std::ranges::stable_sort(faults_, {}, &Fault::at);
  }

  void explain(bool isWhole) {
    const std::vector<Range>& ranges = reading_.ranges;
    for (size_t index = 0; index < ranges.size(); ++index) {
      const Range& range = ranges[index];
      if (const size_t count = isWhole ? 0 : repetitions(index); count > mostRepeated) {
        writeRepetitions(ranges[index], ranges[index + count - 1], count);
        index += count - 1;
        continue;
      }
      write(range, isWhole);
      shownEnd_ = std::max(shownEnd_, range.at + range.size);
      markFaultsBefore(
          std::max(range.at + 1, index + 1 < ranges.size() ? ranges[index + 1].at : UINT32_MAX));
    }
    markFaultsBefore(UINT32_MAX);
  }

 private:
  // Whether two ranges differ in nothing but their place, their value and the numbers of items.
  static bool areAlike(const Range& one, const Range& other) {
    if (one.part != other.part || one.size != other.size || one.meaning != other.meaning) {
      return false;
    }
    size_t a = 0;
    size_t b = 0;
    for (; a < one.path.size() && b < other.path.size() && one.path[a] == other.path[b]; ++a, ++b) {
      if (one.path[a] == '[') {
        a = one.path.find(']', a) - 1;
        b = other.path.find(']', b) - 1;
      }
    }
    return a == one.path.size() && b == other.path.size();
  }

  // How many ranges from this one on, without a fault, are like the ones before it.
  [[nodiscard]] size_t repetitions(size_t index) const {
    const std::vector<Range>& ranges = reading_.ranges;
    const uint32_t end = marked_ < faults_.size() ? faults_[marked_]->at : UINT32_MAX;
    size_t count = 0;
    while (index >= shownRepeated && index + count < ranges.size() &&
           ranges[index + count].at < end &&
           areAlike(ranges[index + count - 1], ranges[index + count]) &&
           (count != 0 || areAlike(ranges[index - shownRepeated], ranges[index]))) {
      ++count;
    }
    return count;
  }

  void writeRepetitions(const Range& first, const Range& last, size_t count) {
    out_.append(positionWidth_ + 2, ' ');
    out_.append("... ");
    out_.appendNumber(count);
    out_.append(" more like it, from byte ");
    out_.appendNumber(first.at);
    out_.append(", " + first.path + ", to byte ");
    out_.appendNumber(last.at);
    out_.append(", " + last.path + "\n");
  }

  void write(const Range& range, bool isWhole) {
    const uint32_t lines = (range.size + bytesOnALine - 1) / bytesOnALine;
    const uint32_t head = std::min(lines, linesOfContents);
    // Many long ranges may hold the same bytes.
    const uint32_t shown = (std::max(shownEnd_, range.at) - range.at) / bytesOnALine;
    const uint32_t tail = isWhole ? std::clamp(shown, head, lines) : lines;
    writeLines(range, 0, head);
    if (head < tail) {
      out_.append(positionWidth_ + 2, ' ');
      out_.append("... ");
      out_.appendNumber(std::min(range.size, tail * bytesOnALine) - head * bytesOnALine);
      out_.append(isWhole ? " bytes shown above\n" : " more bytes\n");
    }
    writeLines(range, tail, lines);
  }

  void writeLines(const Range& range, uint32_t from, uint32_t to) {
    const Ink ink = inkOf(range.part);
    for (uint32_t line = from; line < to; ++line) {
      const uint32_t at = range.at + line * bytesOnALine;
      const std::string hex =
          spaced(bytes_.subspan(at, std::min(bytesOnALine, range.at + range.size - at)));
      out_.append(rightAligned(at) + "  " +
                  (line == 0
                       ? colors_.ink(ink, padded(hex, 3 * bytesOnALine - 1)) + meaningText(range)
                       : colors_.ink(ink, hex)));
      out_.append('\n');
    }
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

  // Marks each fault once, below the first range that begins where it does.
  void markFaultsBefore(uint32_t end) {
    for (; marked_ < faults_.size() && faults_[marked_]->at < end; ++marked_) {
      const Fault& fault = *faults_[marked_];
      out_.append(positionWidth_ + 2, ' ');
      out_.append(
          colors_.ink(fault.isTolerated ? Ink::Yellow : Ink::Red, "^^ " + faultText(fault)));
      out_.append('\n');
    }
  }

  const Reading& reading_;
  std::span<const uint8_t> bytes_;
  const Colors& colors_;
  Text& out_;
  size_t pathWidth_ = 0;
  size_t meaningWidth_ = 0;
  size_t positionWidth_ = 0;
  std::vector<const Fault*> faults_;  // by position
  size_t marked_ = 0;                 // how many of them
  uint32_t shownEnd_ = 0;             // of the ranges before
};

}  // namespace

void explain(const KnownMessage& message, const Reading& reading, std::span<const uint8_t> bytes,
             bool isWhole, const Colors& colors, Text& out) {
  Explainer(reading, bytes, colors, out).explain(isWhole);
  for (const std::string& note : reading.notes) {
    out.append(colors.ink(Ink::Yellow, "note: " + note));
    out.append('\n');
  }
  out.append(colors.ink(Ink::Bold, std::string(message.name) + ": " + faultCountText(reading) +
                                       ", receivers " +
                                       (reading.isAccepted() ? "accept it" : "reject it")));
  out.append('\n');
}

}  // namespace inspect
