#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "capture_file.hpp"
#include "capture_format.hpp"
#include "failure.hpp"

namespace tool {
namespace {

using namespace pcapng;

constexpr uint64_t second = 1'000'000'000;

template <typename Integer>
Integer reversed(Integer value) {
  auto* const bytes = reinterpret_cast<uint8_t*>(&value);
  std::reverse(bytes, bytes + sizeof value);
  return value;
}

uint64_t toNanoseconds(uint64_t units, uint64_t unitsPerSecond) {
  const auto rest = static_cast<long double>(units % unitsPerSecond);
  return units / unitsPerSecond * second +
         static_cast<uint64_t>(rest * second / static_cast<long double>(unitsPerSecond));
}

}  // namespace

CaptureReader::CaptureReader(const std::string& file)
    : file_(file == "-" ? fdopen(dup(STDIN_FILENO), "rb") : std::fopen(file.c_str(), "rb")) {
  if (!file_) {
    throw Failure(Exit::System, file + ": " + std::strerror(errno));
  }
}

bool CaptureReader::fail(const std::string& text) {
  fault_ = "byte " + std::to_string(position_) + ": " + text;
  return false;
}

template <typename Integer>
Integer CaptureReader::load(size_t at) const {
  const auto value = loadAs<Integer>(block_.data() + at);
  return isSwapped_ ? reversed(value) : value;
}

// The next block into block_. False at the end and at a fault.
bool CaptureReader::readBlock() {
  position_ = nextPosition_;
  uint32_t head[3] = {};  // type, length, and of a section its byte order
  const size_t got = std::fread(head, 1, 8, file_.get());
  if (got == 0 && std::feof(file_.get()) != 0) {
    return !hasSection_ && fail("an empty file is no capture");
  }
  if (got != 8) {
    return fail(std::ferror(file_.get()) != 0 ? std::strerror(errno) : "cut inside a block");
  }
  if (head[0] == sectionHeader) {
    if (std::fread(&head[2], 1, 4, file_.get()) != 4) {
      return fail("cut inside a block");
    }
    if (head[2] != byteOrderMagic && head[2] != reversed(byteOrderMagic)) {
      return fail("a section without a byte order");
    }
    isSwapped_ = head[2] != byteOrderMagic;
    takeSection();
  } else if (!hasSection_) {
    return fail("not a pcapng file");
  }
  type_ = isSwapped_ ? reversed(head[0]) : head[0];
  const uint32_t length = isSwapped_ ? reversed(head[1]) : head[1];
  const uint32_t read = head[0] == sectionHeader ? 12 : 8;
  if (length % 4 != 0 || length < read + 4 || length > largestBlock) {
    return fail("a block of " + std::to_string(length) + " bytes");
  }
  block_.resize(length - 8);
  std::memcpy(block_.data(), &head[2], read - 8);
  if (std::fread(block_.data() + (read - 8), 1, length - read, file_.get()) != length - read) {
    return fail("cut inside a block of " + std::to_string(length) + " bytes");
  }
  if (load<uint32_t>(block_.size() - 4) != length) {
    return fail("a block whose two lengths differ");
  }
  block_.resize(block_.size() - 4);
  nextPosition_ = position_ + length;
  return true;
}

std::span<const uint8_t> CaptureReader::option(size_t at, uint16_t code) const {
  while (at + 4 <= block_.size()) {
    const auto found = load<uint16_t>(at);
    const auto length = load<uint16_t>(at + 2);
    if (found == 0 || at + 4 + length > block_.size()) {
      break;
    }
    if (found == code) {
      return std::span(block_).subspan(at + 4, length);
    }
    at += 4 + padded(length);
  }
  return {};
}

uint64_t CaptureReader::countOption(size_t at, uint16_t code) const {
  const auto value = option(at, code);
  if (value.size() != sizeof(uint64_t)) {
    return 0;
  }
  const auto count = loadAs<uint64_t>(value.data());
  return isSwapped_ ? reversed(count) : count;
}

bool CaptureReader::takeInterface() {
  if (block_.size() < 8) {
    return fail("an interface without its link type");
  }
  uint64_t unitsPerSecond = 1'000'000;
  const auto resolution = option(8, timestampResolution);
  if (!resolution.empty()) {
    const unsigned exponent = resolution[0] & 0x7F;
    const bool isBinary = (resolution[0] & 0x80) != 0;
    if (exponent > (isBinary ? 63U : 18U)) {
      return fail("an interface with a resolution of " + std::to_string(exponent));
    }
    unitsPerSecond = 1;
    for (unsigned power = 0; power < exponent; ++power) {
      unitsPerSecond *= isBinary ? 2 : 10;
    }
  }
  interfaces_.push_back({load<uint16_t>(0) == linkTypeUser0, unitsPerSecond});
  return true;
}

void CaptureReader::takeSection() {
  hasSection_ = true;
  interfaces_.clear();
  lostBefore_ = lost();
  lostByStatistics_ = 0;
  lostByPackets_ = 0;
}

void CaptureReader::takeStatistics() {
  lostByStatistics_ += countOption(12, droppedPackets);
}

// The statistics count what the packets do, and what was missed behind the last.
uint64_t CaptureReader::lost() const {
  return lostBefore_ + std::max(lostByStatistics_, lostByPackets_);
}

bool CaptureReader::takePacket(std::optional<Table>& table) {
  if (block_.size() < 20) {
    return fail("a packet without its header");
  }
  const auto interface = load<uint32_t>(0);
  const auto length = load<uint32_t>(12);
  if (interface >= interfaces_.size()) {
    return fail("a packet of an interface that is not described");
  }
  if (length > block_.size() - 20) {
    return fail("a packet longer than its block");
  }
  const uint8_t* const packet = block_.data() + 20;
  const bool isTable = interfaces_[interface].isOurs && length >= tableHeaderLength &&
                       std::equal(tableMagic.begin(), tableMagic.end(), packet) &&
                       loadAs<uint16_t>(packet + 4) == tableVersion;
  const uint16_t headerLength = isTable ? loadAs<uint16_t>(packet + 6) : uint16_t{0};
  if (!isTable || headerLength < tableHeaderLength || headerLength > length) {
    ++otherPackets_;
    return true;
  }
  const uint64_t time = uint64_t{load<uint32_t>(4)} << 32 | load<uint32_t>(8);
  table = Table{toNanoseconds(time, interfaces_[interface].unitsPerSecond),
                loadAs<uint32_t>(packet + 8),
                loadAs<uint32_t>(packet + 12),
                loadAs<uint32_t>(packet + 16),
                loadAs<uint64_t>(packet + 24),
                {packet + headerLength, length - headerLength},
                countOption(20 + size_t{padded(length)}, dropCount)};
  lostByPackets_ += table->missedBefore;
  return true;
}

std::optional<Table> CaptureReader::next() {
  std::optional<Table> table;
  while (fault_.empty() && !table && readBlock()) {
    if (type_ == interfaceDescription) {
      takeInterface();
    } else if (type_ == interfaceStatistics) {
      takeStatistics();
    } else if (type_ == enhancedPacket) {
      takePacket(table);
    }
  }
  return table;
}

bool isCapture(const std::string& file) {
  if (file == "-") {
    return false;
  }
  const File opened(std::fopen(file.c_str(), "rb"));
  uint32_t type = 0;
  return opened && std::fread(&type, 1, 4, opened.get()) == 4 && type == sectionHeader;
}

}  // namespace tool
