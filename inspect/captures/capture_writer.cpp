#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "inspect/bytes/failure.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/captures/capture_format.hpp"

namespace inspect {
namespace {

using namespace pcapng;

constexpr uint8_t nanoseconds = 9;  // a power of ten

template <typename Integer>
void append(std::vector<uint8_t>& bytes, Integer value) {
  const size_t end = bytes.size();
  bytes.resize(end + sizeof value);
  storeAs(bytes.data() + end, value);
}

void appendBytes(std::vector<uint8_t>& bytes, std::span<const uint8_t> added) {
  bytes.insert(bytes.end(), added.begin(), added.end());
  bytes.resize(padded(static_cast<uint32_t>(bytes.size())));
}

void appendOption(std::vector<uint8_t>& bytes, uint16_t code, std::span<const uint8_t> value) {
  append(bytes, code);
  append(bytes, static_cast<uint16_t>(value.size()));
  appendBytes(bytes, value);
}

void appendCount(std::vector<uint8_t>& bytes, uint16_t code, uint64_t count) {
  appendOption(bytes, code, {reinterpret_cast<const uint8_t*>(&count), sizeof count});
}

void appendTime(std::vector<uint8_t>& bytes, uint64_t time) {
  append(bytes, static_cast<uint32_t>(time >> 32));
  append(bytes, static_cast<uint32_t>(time));
}

std::span<const uint8_t> bytesOf(const char* text) {
  return {reinterpret_cast<const uint8_t*>(text), std::strlen(text)};
}

}  // namespace

CaptureWriter::CaptureWriter(const std::string& file, Existing existing) : name_(file) {
  constexpr mode_t mode = 0666;
  constexpr int flags = O_WRONLY | O_CREAT | O_CLOEXEC;
  const char* const path = file.c_str();
  file_ = file == "-" ? dup(STDOUT_FILENO)
                      : open(path, flags | (existing == Existing::Kept ? O_EXCL : O_TRUNC), mode);
  struct stat status {};
  if (file_ < 0 && errno == EEXIST && stat(path, &status) == 0 && !S_ISREG(status.st_mode)) {
    file_ = open(path, flags, mode);
  }
  if (file_ < 0) {
    fail();
  }
  std::vector<uint8_t> section;
  append(section, byteOrderMagic);
  append(section, uint16_t{1});  // version 1.0
  append(section, uint16_t{0});
  append(section, UINT64_MAX);  // of unknown length
  appendOption(section, userApplication, bytesOf("mesh-l2vpn"));
  append(section, uint32_t{0});
  writeBlock(sectionHeader, section);

  std::vector<uint8_t> interface;
  append(interface, linkTypeUser0);
  append(interface, uint16_t{0});
  append(interface, uint32_t{0});  // nothing is cut off
  appendOption(interface, timestampResolution, {&nanoseconds, 1});
  append(interface, uint32_t{0});
  writeBlock(interfaceDescription, interface);
}

void CaptureWriter::write(const Table& table) {
  const auto length = static_cast<uint32_t>(tableHeaderLength + table.bytes.size());
  std::vector<uint8_t> packet;
  packet.reserve(20 + padded(length) + 16);
  append(packet, uint32_t{0});  // the interface
  appendTime(packet, table.time);
  append(packet, length);
  append(packet, length);
  appendBytes(packet, tableMagic);
  append(packet, tableVersion);
  append(packet, tableHeaderLength);
  append(packet, table.source);
  append(packet, table.destination);
  append(packet, table.id);
  append(packet, uint32_t{0});
  append(packet, table.extra);
  appendBytes(packet, table.bytes);
  if (table.missedBefore != 0) {
    appendCount(packet, dropCount, table.missedBefore);
    append(packet, uint32_t{0});
  }
  writeBlock(enhancedPacket, packet);
}

void CaptureWriter::writeStatistics(uint64_t received, uint64_t lost) {
  std::vector<uint8_t> statistics;
  append(statistics, uint32_t{0});
  appendTime(statistics, nowInNanoseconds());
  appendCount(statistics, receivedPackets, received);
  appendCount(statistics, droppedPackets, lost);
  append(statistics, uint32_t{0});
  writeBlock(interfaceStatistics, statistics);
}

void CaptureWriter::writeBlock(uint32_t type, const std::vector<uint8_t>& body) {
  const auto length = static_cast<uint32_t>(12 + body.size());
  std::vector<uint8_t> block;
  block.reserve(length);
  append(block, type);
  append(block, length);
  block.insert(block.end(), body.begin(), body.end());
  append(block, length);
  for (std::span<const uint8_t> left = block; !left.empty();) {
    const ssize_t count = ::write(file_, left.data(), left.size());
    if (count >= 0) {
      left = left.subspan(static_cast<size_t>(count));
    } else if (errno != EINTR) {
      takeBack(block.size() - left.size());
      fail();
    }
  }
}

// Shortens a regular file by what was written last. errno stays as it is.
void CaptureWriter::takeBack(size_t size) const {
  const int error = errno;
  const off_t end = lseek(file_, 0, SEEK_CUR);
  if (size != 0 && end >= 0 && ftruncate(file_, end - static_cast<off_t>(size)) == 0) {
    lseek(file_, end - static_cast<off_t>(size), SEEK_SET);
  }
  errno = error;
}

CaptureWriter::~CaptureWriter() {
  if (file_ >= 0) {
    ::close(file_);
  }
}

void CaptureWriter::close() {
  if (::close(std::exchange(file_, -1)) != 0) {
    fail();
  }
}

void CaptureWriter::fail() const {
  throw Failure(Cause::System, name_ + ": " + std::strerror(errno));
}

}  // namespace inspect
