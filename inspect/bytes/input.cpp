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
size_t largestInput() {
  return memoryLimit / 2;
}

template <typename Contents>
Contents readAll(InputFile& file) {
  Contents contents;
  typename Contents::value_type part[bufferSize];
  while (const size_t count = file.read(part, sizeof part)) {
    contents.insert(contents.end(), part, part + count);
    if (contents.size() > largestInput()) {
      throw Failure(Cause::BadInput, file.name() + ": more than " + std::to_string(largestInput()) +
                                         " bytes are too long for a message");
    }
  }
  if (file.error() != 0) {
    throw Failure(Cause::System, file.name() + ": " + std::strerror(file.error()));
  }
  return contents;
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
  if (error_ == 0 && fstat(descriptor_, &status) == 0 && S_ISDIR(status.st_mode)) {
    error_ = EISDIR;
  }
  // Opening a pipe waits for its writer; the user may interrupt that.
  if (error_ != 0 && !(error_ == EINTR && isInterrupted())) {
    throw Failure(Cause::System, name_ + ": " + std::strerror(error_));
  }
  error_ = 0;
}

InputFile::~InputFile() {
  if (descriptor_ > STDIN_FILENO) {
    close(descriptor_);
  }
}

// Appends bytes to the buffer. False if there are none.
bool InputFile::fill() {
  std::copy(buffer_.begin() + static_cast<ptrdiff_t>(begin_),
            buffer_.begin() + static_cast<ptrdiff_t>(end_), buffer_.begin());
  end_ -= begin_;
  begin_ = 0;
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

bool InputFile::goesOnWith(std::string_view bytes) {
  while (end_ - begin_ < bytes.size() && fill()) {
  }
  return std::string_view(buffer_.data() + begin_, end_ - begin_).starts_with(bytes);
}

size_t InputFile::read(void* to, size_t size) {
  size_t taken = 0;
  while (taken < size && (begin_ < end_ || fill())) {
    const size_t count = std::min(size - taken, end_ - begin_);
    std::memcpy(static_cast<char*>(to) + taken, buffer_.data() + begin_, count);
    begin_ += count;
    taken += count;
  }
  return taken;
}

std::string readAll(const std::string& file) {
  InputFile opened(file);
  return readAll<std::string>(opened);
}

bool isCapture(InputFile& file) {
  // The same in both byte orders.
  return file.goesOnWith("\x0A\x0D\x0D\x0A");
}

std::vector<uint8_t> readBytes(InputFile& file, InputForm form) {
  if (form != InputForm::Binary && isCapture(file)) {
    throw Failure(Cause::BadInput, file.name() + ": this is a capture; use decode");
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
