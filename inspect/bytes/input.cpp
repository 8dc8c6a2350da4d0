#include "inspect/bytes/input.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "inspect/bytes/failure.hpp"
#include "inspect/bytes/hex_text.hpp"
#include "inspect/bytes/interruption.hpp"
#include "inspect/bytes/memory_limit.hpp"

namespace inspect {
namespace {

constexpr size_t bufferSize = 65536;

// While it grows, a container holds half of its contents twice, and bytes take half of their text.
void refuseTooLong(const InputFile& file, size_t size) {
  const uint64_t largest = memoryLimit / 2;
  if (size > largest) {
    throw Failure(Cause::BadInput, file.name() + ": more than " + std::to_string(largest) +
                                       " bytes are too long for a message");
  }
}

void failForError(const InputFile& file) {
  if (file.error() != 0) {
    throw Failure(Cause::System, file.name() + ": " + std::strerror(file.error()));
  }
}

template <typename Contents>
Contents readAll(InputFile& file) {
  Contents contents;
  for (auto part = file.available(); !part.empty(); part = file.available()) {
    contents.insert(contents.end(), part.begin(), part.end());
    file.skip(part.size());
    refuseTooLong(file, contents.size());
  }
  failForError(file);
  return contents;
}

bool startsWith(InputFile& file, std::initializer_list<uint8_t> bytes) {
  return std::ranges::equal(file.peek(bytes.size()), bytes);
}

// Text has no control characters except white space.
bool isText(std::string_view contents) {
  return std::ranges::none_of(contents, [](char letter) {
    const auto code = static_cast<uint8_t>(letter);
    return (code < 0x20 && (code < '\t' || code > '\r')) || code == 0x7F;
  });
}

std::vector<uint8_t> fromText(const std::string& name, std::string_view text, InputForm form) {
  try {
    return fromHexText(text);
  } catch (const Failure& failure) {
    const bool isGuessed = form == InputForm::Guessed;
    throw Failure(Cause::BadInput, name + ": " + (isGuessed ? "looks like text, but " : "") +
                                       failure.what() +
                                       (isGuessed ? "; use --binary for bytes" : ""));
  }
}

}  // namespace

InputFile::InputFile(std::string name)
    : name_(std::move(name)),
      descriptor_(name_ == "-" ? STDIN_FILENO : open(name_.c_str(), O_RDONLY | O_CLOEXEC)),
      buffer_(bufferSize) {
  if (descriptor_ < 0) {
    error_ = errno;
  }
  struct stat status {};
  if (error_ == 0 && fstat(descriptor_, &status) == 0) {
    error_ = S_ISDIR(status.st_mode) ? EISDIR : 0;
    size_ = S_ISREG(status.st_mode) ? static_cast<uint64_t>(status.st_size) : 0;
  }
  // Opening a pipe waits for its writer; an interruption ends that with EINTR.
  if (error_ != 0) {
    throw Failure(Cause::System, name_ + ": " + std::strerror(error_));
  }
}

InputFile::~InputFile() {
  if (descriptor_ > STDIN_FILENO) {
    close(descriptor_);
  }
}

std::span<const uint8_t> InputFile::available() {
  return peek(1).empty() ? std::span<const uint8_t>()
                         : std::span(buffer_).subspan(begin_, end_ - begin_);
}

double InputFile::progress() const {
  return size_ == 0 ? 0 : static_cast<double>(consumed_) / static_cast<double>(size_);
}

// Appends bytes to the buffer. False if there are none.
bool InputFile::fill() {
  if (begin_ == end_) {
    begin_ = end_ = 0;
  }
  if (end_ == buffer_.size()) {
    // Moving less than half of a full buffer costs no more than reading it did.
    if (begin_ > buffer_.size() / 2) {
      std::copy(buffer_.begin() + static_cast<ptrdiff_t>(begin_), buffer_.end(), buffer_.begin());
      end_ -= begin_;
      begin_ = 0;
    } else {
      buffer_.resize(2 * buffer_.size());
    }
  }
  beforeWaiting_();
  while (error_ == 0 && !isInterrupted()) {
    const ssize_t count = ::read(descriptor_, buffer_.data() + end_, buffer_.size() - end_);
    if (count >= 0) {
      end_ += static_cast<size_t>(count);
      return count > 0;
    }
    error_ = errno == EINTR ? 0 : errno;
  }
  return false;
}

std::span<const uint8_t> InputFile::peek(size_t size) {
  while (end_ - begin_ < size && fill()) {
  }
  return std::span(buffer_).subspan(begin_, std::min(size, end_ - begin_));
}

std::optional<std::string> readLine(InputFile& file) {
  std::string line;
  for (auto part = file.available(); !part.empty(); part = file.available()) {
    const auto end = std::ranges::find(part, '\n');
    line.append(part.begin(), end);
    refuseTooLong(file, line.size());
    const bool isWhole = end != part.end();
    file.skip(static_cast<size_t>(end - part.begin()) + (isWhole ? 1 : 0));
    if (isWhole) {
      return line;
    }
  }
  failForError(file);
  return line.empty() ? std::nullopt : std::optional(line);
}

std::string readAll(const std::string& file) {
  InputFile opened(file);
  return readAll<std::string>(opened);
}

bool isCapture(InputFile& file) {
  // The same in both byte orders.
  return startsWith(file, {0x0A, 0x0D, 0x0D, 0x0A}) || !foreignFormat(file).empty();
}

std::string foreignFormat(InputFile& file) {
  if (startsWith(file, {0x1F, 0x8B, 0x08})) {
    return "a gzip file; unpack it with gunzip";
  }
  // Of microseconds and nanoseconds.
  if (startsWith(file, {0xD4, 0xC3, 0xB2, 0xA1}) || startsWith(file, {0xA1, 0xB2, 0xC3, 0xD4}) ||
      startsWith(file, {0x4D, 0x3C, 0xB2, 0xA1}) || startsWith(file, {0xA1, 0xB2, 0x3C, 0x4D})) {
    return "a pcap file of the classic format; convert it with editcap -F pcapng";
  }
  return "";
}

std::vector<uint8_t> readBytes(InputFile& file, InputForm form) {
  if (form != InputForm::Binary && isCapture(file)) {
    const std::string foreign = foreignFormat(file);
    throw Failure(
        Cause::BadInput,
        file.name() + ": this is " +
            (foreign.empty() ? "a capture; use decode, or --packet N for one of its packets"
                             : foreign));
  }
  auto contents = readAll<std::vector<uint8_t>>(file);
  const std::string_view text(reinterpret_cast<const char*>(contents.data()), contents.size());
  if (form == InputForm::Hex || (form == InputForm::Guessed && isText(text))) {
    return fromText(file.name(), text, form);
  }
  return contents;
}

std::vector<uint8_t> readBytes(const std::string& file, InputForm form) {
  InputFile opened(file);
  return readBytes(opened, form);
}

}  // namespace inspect
