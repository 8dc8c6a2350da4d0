#include <algorithm>
#include <cstring>

#include "inspect/bytes/interruption.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/captures/capture_format.hpp"
#include "inspect/captures/saturation.hpp"
#include "inspect/messages/release.hpp"

namespace inspect {
namespace {

using namespace pcapng;

constexpr uint64_t second = 1'000'000'000;
constexpr size_t largestPiece = size_t{1} << 20;
constexpr size_t mostInterfaces = 65536;

template <typename Integer>
Integer reversed(Integer value) {
  auto* const bytes = reinterpret_cast<uint8_t*>(&value);
  std::reverse(bytes, bytes + sizeof value);
  return value;
}

// None if the time does not fit 64 bits.
std::optional<uint64_t> toNanoseconds(uint64_t units, uint64_t unitsPerSecond) {
  const auto rest = static_cast<long double>(units % unitsPerSecond);
  const auto fraction =
      static_cast<uint64_t>(rest * second / static_cast<long double>(unitsPerSecond));
  uint64_t time = 0;
  return __builtin_mul_overflow(units / unitsPerSecond, second, &time) ||
                 __builtin_add_overflow(time, fraction, &time)
             ? std::nullopt
             : std::optional(time);
}

}  // namespace

bool CaptureReader::fail(const std::string& text, Cause cause) {
  fault_ = "byte " + std::to_string(position_) + ": " + text;
  faultCause_ = cause;
  return false;
}

// For missing bytes: a read error, an interruption, or a truncated file.
bool CaptureReader::failReading(const std::string& text) {
  if (file_->error() != 0) {
    return fail(std::strerror(file_->error()), Cause::System);
  }
  return !isInterrupted() && fail(text);
}

void CaptureReader::throwFault() const {
  if (!fault_.empty()) {
    throw Failure(faultCause_, file_->name() + ": " + fault_);
  }
}

template <typename Integer>
Integer CaptureReader::load(size_t at) const {
  const auto value = loadAs<Integer>(block_.data() + at);
  return isSwapped_ ? reversed(value) : value;
}

// Reads the next block into block_. False at the end and at a fault.
bool CaptureReader::readBlock() {
  position_ = nextPosition_;
  uint32_t head[3] = {};  // type, length; for a section its byte order
  const size_t got = file_->read(head, 8);
  if (got == 0 && file_->error() == 0) {
    return !hasSection_ && failReading("an empty file is not a capture");
  }
  if (got != 8) {
    return failReading("truncated inside a block");
  }
  if (head[0] == sectionHeader) {
    if (file_->read(&head[2], 4) != 4) {
      return failReading("truncated inside a block");
    }
    if (head[2] != byteOrderMagic && head[2] != reversed(byteOrderMagic)) {
      return fail("a section without a byte-order magic");
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
  block_.resize(read - 8);
  std::memcpy(block_.data(), &head[2], block_.size());
  if (!readBody(length - 8)) {
    return failReading("truncated inside a block of " + std::to_string(length) + " bytes");
  }
  if (load<uint32_t>(block_.size() - 4) != length) {
    return fail("a block whose two lengths differ");
  }
  block_.resize(block_.size() - 4);
  nextPosition_ = position_ + length;
  return true;
}

// Piece by piece: a block may claim to be longer than the file.
bool CaptureReader::readBody(size_t length) {
  while (block_.size() < length) {
    const size_t before = block_.size();
    block_.resize(std::min(length, before + largestPiece));
    if (file_->read(block_.data() + before, block_.size() - before) != block_.size() - before) {
      return false;
    }
  }
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

std::optional<uint64_t> CaptureReader::countOption(size_t at, uint16_t code) const {
  const auto value = option(at, code);
  if (value.size() != sizeof(uint64_t)) {
    return std::nullopt;
  }
  const auto count = loadAs<uint64_t>(value.data());
  return isSwapped_ ? reversed(count) : count;
}

bool CaptureReader::takeInterface() {
  if (block_.size() < 8) {
    return fail("an interface without a link type");
  }
  if (interfaces_.size() == mostInterfaces) {
    return fail("more than " + std::to_string(mostInterfaces) + " interfaces");
  }
  uint64_t unitsPerSecond = 1'000'000;
  const auto resolution = option(8, timestampResolution);
  if (!resolution.empty()) {
    const unsigned exponent = resolution[0] & 0x7F;
    const bool isBinary = (resolution[0] & 0x80) != 0;
    if (exponent > (isBinary ? 63U : 18U)) {
      return fail("an interface with a timestamp resolution of " + std::to_string(exponent));
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
  lostBefore_ = lost();
  lostByPackets_ = 0;
  interfaces_.clear();
  schemas_.clear();
}

bool CaptureReader::takeStatistics() {
  if (block_.size() < 12 || load<uint32_t>(0) >= interfaces_.size()) {
    return fail("statistics of an unknown interface");
  }
  Interface& interface = interfaces_[load<uint32_t>(0)];
  interface.lost = countOption(12, droppedPackets).value_or(interface.lost);
  return true;
}

// The statistics include what the packets count, and calls missed after the last packet.
uint64_t CaptureReader::lost() const {
  uint64_t byStatistics = 0;
  for (const Interface& interface : interfaces_) {
    byStatistics = addSaturating(byStatistics, interface.isOurs ? interface.lost : 0);
  }
  return addSaturating(lostBefore_, std::max(byStatistics, lostByPackets_));
}

bool CaptureReader::takePacket(std::optional<Table>& table) {
  if (block_.size() < 20) {
    return fail("a packet without a header");
  }
  const auto interface = load<uint32_t>(0);
  const auto length = load<uint32_t>(12);
  if (interface >= interfaces_.size()) {
    return fail("a packet of an unknown interface");
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
  const auto time = toNanoseconds(uint64_t{load<uint32_t>(4)} << 32 | load<uint32_t>(8),
                                  interfaces_[interface].unitsPerSecond);
  if (!time) {
    return fail("a packet with a time after the year 2554");
  }
  const uint32_t original = std::max(length, load<uint32_t>(16));
  table = Table{*time,
                loadAs<uint32_t>(packet + 8),
                loadAs<uint32_t>(packet + 12),
                loadAs<uint32_t>(packet + 16),
                loadAs<uint64_t>(packet + 24),
                {packet + headerLength, length - headerLength},
                countOption(20 + size_t{padded(length)}, dropCount).value_or(0),
                original - length,
                schemas_.find(loadAs<uint32_t>(packet + 16))};
  lostByPackets_ = addSaturating(lostByPackets_, table->missedBefore);
  return true;
}

std::optional<Table> CaptureReader::next() {
  std::optional<Table> table;
  while (fault_.empty() && !table && readBlock()) {
    if (type_ == interfaceDescription) {
      takeInterface();
    } else if (type_ == interfaceStatistics) {
      takeStatistics();
    } else if (type_ == schemaDescription) {
      schemas_.take(block_);
    } else if (type_ == enhancedPacket) {
      takePacket(table);
    } else if (type_ == simplePacket || type_ == obsoletePacket) {
      ++otherPackets_;
    }
  }
  return table;
}

}  // namespace inspect
