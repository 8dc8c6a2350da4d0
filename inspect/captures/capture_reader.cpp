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

constexpr size_t mostInterfaces = 65536;
constexpr uint32_t shortestBlock = 12;
constexpr uint32_t shortestSection = 28;

template <typename Integer>
Integer reversed(Integer value) {
  auto* const bytes = reinterpret_cast<uint8_t*>(&value);
  std::reverse(bytes, bytes + sizeof value);
  return value;
}

// None if the time does not fit 64 bits.
std::optional<uint64_t> toNanoseconds(uint64_t units, uint64_t unitsPerSecond, int64_t offset) {
  const auto rest = static_cast<long double>(units % unitsPerSecond);
  const auto fraction =
      static_cast<uint64_t>(rest * nanosecondsPerSecond / static_cast<long double>(unitsPerSecond));
  uint64_t seconds = units / unitsPerSecond;
  uint64_t time = 0;
  return __builtin_add_overflow(seconds, offset, &seconds) ||
                 __builtin_mul_overflow(seconds, nanosecondsPerSecond, &time) ||
                 __builtin_add_overflow(time, fraction, &time)
             ? std::nullopt
             : std::optional(time);
}

bool isKnownType(uint32_t type) {
  switch (type) {
    case sectionHeader:
    case interfaceDescription:
    case obsoletePacket:
    case simplePacket:
    case nameResolution:
    case interfaceStatistics:
    case enhancedPacket:
    case customBlock:
    case customBlockToCopy:
    case schemaDescription:
      return true;
    default:
      return false;
  }
}

}  // namespace

// A failure of the system outweighs earlier faults.
void CaptureReader::fail(const std::string& text, Cause cause) {
  if (faults_++ == 0 || cause == Cause::System) {
    fault_ = "byte " + std::to_string(position_) + ": " + text;
    faultCause_ = cause;
  }
}

// For missing bytes: a read error, an interruption, or a truncated file.
void CaptureReader::failReading(const std::string& text) {
  if (file_->error() != 0) {
    fail(std::strerror(file_->error()), Cause::System);
  } else if (!isInterrupted()) {
    fail(text);
  }
}

std::string CaptureReader::fault() const {
  return faults_ < 2 ? fault_ : fault_ + "; faults: " + std::to_string(faults_);
}

void CaptureReader::throwFault() const {
  if (faults_ != 0) {
    throw Failure(faultCause_, file_->name() + ": " + fault());
  }
}

template <typename Integer>
Integer CaptureReader::load(size_t at) const {
  const auto value = loadAs<Integer>(block_.data() + at);
  return isSwapped_ ? reversed(value) : value;
}

// Makes the next sound block the current one. False at the end.
bool CaptureReader::readBlock() {
  while (!isAtEnd_) {
    file_->skip(length_);
    position_ += length_;
    length_ = 0;
    const Opening opening = openBlock();
    if (opening == Opening::Sound) {
      return true;
    }
    isAtEnd_ = opening == Opening::Over || !findBlock();
  }
  return false;
}

CaptureReader::Opening CaptureReader::openBlock() {
  block_ = file_->peek(shortestBlock);
  const bool isSection = block_.size() >= 4 && loadAs<uint32_t>(block_.data()) == sectionHeader;
  if (!hasSection_ && !isSection) {
    const std::string foreign = foreignFormat(*file_);
    failReading(block_.empty()    ? "an empty file is not a capture"
                : foreign.empty() ? "not a pcapng file"
                                  : "this is " + foreign);
    return Opening::Over;
  }
  if (block_.size() < shortestBlock) {
    if (!block_.empty() || file_->error() != 0) {
      failReading("truncated inside a block");
    }
    return Opening::Over;
  }
  const Opening damaged = hasSection_ ? Opening::Damaged : Opening::Over;
  const bool wasSwapped = isSwapped_;
  if (isSection) {
    const auto magic = loadAs<uint32_t>(block_.data() + 8);
    if (magic != byteOrderMagic && magic != reversed(byteOrderMagic)) {
      fail("a section without a byte-order magic");
      return damaged;
    }
    isSwapped_ = magic != byteOrderMagic;
  }
  const auto length = load<uint32_t>(4);
  const auto failBlock = [&](const std::string& text) {
    isSwapped_ = wasSwapped;
    failReading(text);
    return file_->error() != 0 || isInterrupted() ? Opening::Over : damaged;
  };
  if (length % 4 != 0 || length > largestBlock ||
      length < (isSection ? shortestSection : shortestBlock)) {
    return failBlock("a block of " + std::to_string(length) + " bytes");
  }
  block_ = file_->peek(length);
  if (block_.size() < length) {
    return failBlock("truncated inside a block of " + std::to_string(length) + " bytes");
  }
  if (load<uint32_t>(length - 4) != length) {
    return failBlock("a block whose two lengths differ");
  }
  if (isSection && load<uint16_t>(12) != majorVersion) {
    fail("a section of pcapng version " + std::to_string(load<uint16_t>(12)) +
         "; this program reads version " + std::to_string(majorVersion));
    return Opening::Over;
  }
  type_ = load<uint32_t>(0);
  length_ = length;
  block_ = block_.subspan(8, length - shortestBlock);
  return Opening::Sound;
}

// Behind a damaged block: moves on to the next sound one.
bool CaptureReader::findBlock() {
  do {
    file_->skip(1);
    ++position_;
    block_ = file_->peek(shortestBlock);
    if (block_.size() < shortestBlock) {
      return false;
    }
  } while (!startsBlock());
  if (faults_ == 1) {
    fault_ += "; reading continues at byte " + std::to_string(position_);
  }
  return true;
}

bool CaptureReader::startsBlock() {
  const auto length = load<uint32_t>(4);
  if (loadAs<uint32_t>(block_.data()) == sectionHeader) {
    const auto magic = loadAs<uint32_t>(block_.data() + 8);
    return magic == byteOrderMagic || magic == reversed(byteOrderMagic);
  }
  if (!isKnownType(load<uint32_t>(0)) || length % 4 != 0 || length < shortestBlock ||
      length > largestBlock) {
    return false;
  }
  block_ = file_->peek(length);
  return block_.size() == length && load<uint32_t>(length - 4) == length;
}

std::span<const uint8_t> CaptureReader::option(size_t at, uint16_t code) const {
  while (at + 4 <= block_.size()) {
    const auto found = load<uint16_t>(at);
    const auto length = load<uint16_t>(at + 2);
    if (found == 0 || at + 4 + length > block_.size()) {
      break;
    }
    if (found == code) {
      return block_.subspan(at + 4, length);
    }
    at += 4 + padded(length);
  }
  return {};
}

std::optional<uint64_t> CaptureReader::numberOption(size_t at, uint16_t code) const {
  const auto value = option(at, code);
  if (value.size() != sizeof(uint64_t)) {
    return std::nullopt;
  }
  const auto number = loadAs<uint64_t>(value.data());
  return isSwapped_ ? reversed(number) : number;
}

// A damaged interface has a number like any other.
void CaptureReader::takeInterface() {
  if (interfaces_.size() == mostInterfaces) {
    return fail("more than " + std::to_string(mostInterfaces) + " interfaces");
  }
  Interface& interface = interfaces_.emplace_back();
  if (block_.size() < 8) {
    return fail("an interface without a link type");
  }
  const auto resolution = option(8, timestampResolution);
  if (!resolution.empty()) {
    const unsigned exponent = resolution[0] & 0x7F;
    const bool isBinary = (resolution[0] & 0x80) != 0;
    if (exponent > (isBinary ? 63U : 18U)) {
      return fail("an interface with a timestamp resolution of " + std::to_string(exponent));
    }
    interface.unitsPerSecond = 1;
    for (unsigned power = 0; power < exponent; ++power) {
      interface.unitsPerSecond *= isBinary ? 2 : 10;
    }
  }
  interface.offset = static_cast<int64_t>(numberOption(8, timestampOffset).value_or(0));
  interface.linkType = load<uint16_t>(0);
}

void CaptureReader::takeSection() {
  hasSection_ = true;
  lostBefore_ = lost();
  lostByPackets_ = 0;
  interfaces_.clear();
  schemas_.clear();
}

void CaptureReader::takeStatistics() {
  if (block_.size() < 12 || load<uint32_t>(0) >= interfaces_.size()) {
    return fail("statistics of an unknown interface");
  }
  Interface& interface = interfaces_[load<uint32_t>(0)];
  interface.lost = numberOption(12, droppedPackets).value_or(interface.lost);
}

// The statistics include what the packets count, and calls missed after the last packet.
uint64_t CaptureReader::lost() const {
  uint64_t byStatistics = 0;
  for (const Interface& interface : interfaces_) {
    byStatistics =
        addSaturating(byStatistics, interface.linkType == linkTypeUser0 ? interface.lost : 0);
  }
  return addSaturating(lostBefore_, std::max(byStatistics, lostByPackets_));
}

std::string CaptureReader::foreignness(const Interface& interface,
                                       std::span<const uint8_t> packet) {
  if (interface.linkType != linkTypeUser0) {
    return "of link type " + std::to_string(interface.linkType) + ", tables are of " +
           std::to_string(linkTypeUser0);
  }
  if (packet.size() < tableHeaderLength ||
      !std::ranges::equal(packet.first(tableMagic.size()), tableMagic)) {
    return "without the header that tables have";
  }
  const auto version = loadAs<uint16_t>(packet.data() + 4);
  const auto headerLength = loadAs<uint16_t>(packet.data() + 6);
  if (version != tableVersion) {
    return "of version " + std::to_string(version) + ", this program reads version " +
           std::to_string(tableVersion);
  }
  return headerLength < tableHeaderLength || headerLength > packet.size()
             ? "with a header of " + std::to_string(headerLength) + " bytes"
             : "";
}

void CaptureReader::takePacket(std::optional<Table>& table) {
  ++packets_;
  if (block_.size() < 20) {
    return fail("a packet without a header");
  }
  const auto number = load<uint32_t>(0);
  const auto length = load<uint32_t>(12);
  if (number >= interfaces_.size()) {
    return fail("a packet of an unknown interface");
  }
  if (length > block_.size() - 20) {
    return fail("a packet longer than its block");
  }
  const Interface& interface = interfaces_[number];
  const auto packet = block_.subspan(20, length);
  foreignness_ = foreignness(interface, packet);
  if (!foreignness_.empty()) {
    ++otherPackets_;
    return;
  }
  const auto time = toNanoseconds(uint64_t{load<uint32_t>(4)} << 32 | load<uint32_t>(8),
                                  interface.unitsPerSecond, interface.offset);
  if (!time) {
    return fail("a packet with a time before 1970 or after the year 2554");
  }
  const uint32_t original = std::max(length, load<uint32_t>(16));
  table = Table{*time,
                loadAs<uint32_t>(packet.data() + 8),
                loadAs<uint32_t>(packet.data() + 12),
                loadAs<uint32_t>(packet.data() + 16),
                loadAs<uint64_t>(packet.data() + 24),
                packet.subspan(loadAs<uint16_t>(packet.data() + 6)),
                numberOption(20 + size_t{padded(length)}, dropCount).value_or(0),
                original - length,
                packets_,
                schemas_.find(loadAs<uint32_t>(packet.data() + 16))};
  lostByPackets_ = addSaturating(lostByPackets_, table->missedBefore);
}

std::optional<Table> CaptureReader::next() {
  std::optional<Table> table;
  while (!table && readBlock()) {
    if (type_ == sectionHeader) {
      takeSection();
    } else if (type_ == interfaceDescription) {
      takeInterface();
    } else if (type_ == interfaceStatistics) {
      takeStatistics();
    } else if (type_ == schemaDescription) {
      schemas_.take(block_);
    } else if (type_ == enhancedPacket) {
      takePacket(table);
    } else if (type_ == simplePacket || type_ == obsoletePacket) {
      ++packets_;
      ++otherPackets_;
      foreignness_ = "in a block without address or time";
    }
  }
  if (table) {
    ++tables_;
  } else if (tables_ == 0 && otherPackets_ != 0 && faults_ == 0) {
    faults_ = 1;
    fault_ = "no tables, other packets: " + std::to_string(otherPackets_) + "; the last is " +
             foreignness_ + "; record captures with mesh-l2vpn record";
  }
  return table;
}

}  // namespace inspect
