#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "inspect/bytes/failure.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/captures/capture_format.hpp"
#include "inspect/messages/release.hpp"

namespace inspect {
namespace {

using namespace pcapng;

constexpr uint8_t nanosecond = 9;  // 10 to the power of -9 seconds
constexpr size_t mostUnwritten = 65536;

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

template <typename AppendBody>
void CaptureWriter::addBlock(uint32_t type, AppendBody appendBody) {
  const size_t begin = blocks_.size();
  append(blocks_, type);
  append(blocks_, uint32_t{0});
  appendBody();
  const auto length = static_cast<uint32_t>(blocks_.size() - begin + 4);
  append(blocks_, length);
  storeAs(blocks_.data() + begin + 4, length);
}

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
  addBlock(sectionHeader, [&] {
    append(blocks_, byteOrderMagic);
    append(blocks_, uint16_t{1});  // version 1.0
    append(blocks_, uint16_t{0});
    append(blocks_, UINT64_MAX);  // of unknown length
    appendOption(blocks_, userApplication, bytesOf("mesh-l2vpn"));
    append(blocks_, uint32_t{0});
  });
  addBlock(interfaceDescription, [&] {
    append(blocks_, linkTypeUser0);
    append(blocks_, uint16_t{0});
    append(blocks_, uint32_t{0});  // nothing is cut off
    appendOption(blocks_, timestampResolution, {&nanosecond, 1});
    append(blocks_, uint32_t{0});
  });
  flush();
}

CaptureWriter::~CaptureWriter() {
  if (file_ >= 0) {
    passOn();
    ::close(file_);
  }
}

void CaptureWriter::write(const Table& table) {
  const KnownMessage* const message = messageOf(table);
  if (message != nullptr && described_.insert(table.id).second) {
    addBlock(schemaDescription, [&] { appendBytes(blocks_, schemaBlock(*message)); });
  }
  addBlock(enhancedPacket, [&] {
    const auto length = static_cast<uint32_t>(tableHeaderLength + table.bytes.size());
    append(blocks_, uint32_t{0});  // the interface
    appendTime(blocks_, table.time);
    append(blocks_, length);
    append(blocks_, length);
    appendBytes(blocks_, tableMagic);
    append(blocks_, tableVersion);
    append(blocks_, tableHeaderLength);
    append(blocks_, table.source);
    append(blocks_, table.destination);
    append(blocks_, table.id);
    append(blocks_, uint32_t{0});
    append(blocks_, table.extra);
    appendBytes(blocks_, table.bytes);
    if (table.missedBefore != 0) {
      appendCount(blocks_, dropCount, table.missedBefore);
      append(blocks_, uint32_t{0});
    }
  });
  if (blocks_.size() >= mostUnwritten) {
    flush();
  }
}

void CaptureWriter::writeStatistics(uint64_t received, uint64_t lost) {
  addBlock(interfaceStatistics, [&] {
    append(blocks_, uint32_t{0});
    appendTime(blocks_, nowInNanoseconds());
    appendCount(blocks_, receivedPackets, received);
    appendCount(blocks_, droppedPackets, lost);
    append(blocks_, uint32_t{0});
  });
  flush();
}

void CaptureWriter::flush() {
  if (!passOn()) {
    fail();
  }
}

// Writes the blocks, and forgets them. False for an error, which errno tells: then a regular file
// ends with the last whole block.
bool CaptureWriter::passOn() {
  size_t done = 0;
  ssize_t count = 0;
  while (done < blocks_.size() && (count >= 0 || errno == EINTR)) {
    count = ::write(file_, blocks_.data() + done, blocks_.size() - done);
    done += count < 0 ? 0 : static_cast<size_t>(count);
  }
  size_t whole = 0;
  while (whole < done) {
    const auto length = loadAs<uint32_t>(blocks_.data() + whole + 4);
    if (length > done - whole) {
      break;
    }
    tables_ += loadAs<uint32_t>(blocks_.data() + whole) == enhancedPacket ? 1 : 0;
    whole += length;
  }
  const bool isWhole = done == blocks_.size();
  blocks_.clear();
  if (!isWhole) {
    takeBack(done - whole);
  }
  return isWhole;
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

void CaptureWriter::close() {
  flush();
  if (::close(std::exchange(file_, -1)) != 0) {
    fail();
  }
}

void CaptureWriter::fail() const {
  throw Failure(Cause::System, name_ + ": " + std::strerror(errno));
}

}  // namespace inspect
