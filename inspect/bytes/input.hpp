// Input from files or the standard input, read once from front to back, so that pipes work too.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace inspect {

enum class InputForm {
  Guessed,  // hexadecimal if it is text: every message contains zero bytes
  Binary,
  Hex,
};

class InputFile {
 public:
  // "-" is the standard input. Fails if the file cannot be opened or is a directory.
  explicit InputFile(std::string name);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }

  // The next bytes; valid until the next call. Fewer than asked for at the end, after an error and
  // after an interruption. Does not consume them.
  std::span<const uint8_t> peek(size_t size);

  // The bytes that have arrived, at least one; none where peek() returns none.
  std::span<const uint8_t> available();

  // Called before each wait for more bytes: for output that must not wait with it.
  void setBeforeWaiting(std::function<void()> call) { beforeWaiting_ = std::move(call); }

  // How much of the file is consumed, from 0 to 1; 0 for a pipe.
  [[nodiscard]] double progress() const;

  // Consumes bytes that peek() has returned.
  void skip(size_t size) {
    begin_ += size;
    consumed_ += size;
  }

  // errno of the first error, or 0.
  [[nodiscard]] int error() const { return error_; }

 private:
  bool fill();

  std::string name_;
  int descriptor_;
  int error_ = 0;
  uint64_t size_ = 0;  // of a regular file
  uint64_t consumed_ = 0;
  std::function<void()> beforeWaiting_ = [] {};
  std::vector<uint8_t> buffer_;
  size_t begin_ = 0;  // of the unread bytes
  size_t end_ = 0;
};

// The next line, without its end. None at the end of the file. Fails for a line that is too long
// for a message.
std::optional<std::string> readLine(InputFile& file);

// The whole of a file, or of the standard input for "-".
std::string readAll(const std::string& file);

// Whether a file begins as a capture does, also one of a format that is not read.
bool isCapture(InputFile& file);

// For a capture of such a format: what it is, and what to do with it. Else empty.
std::string foreignFormat(InputFile& file);

// A message's bytes from a file. Fails for a capture, unless the form is Binary.
std::vector<uint8_t> readBytes(InputFile& file, InputForm form);
std::vector<uint8_t> readBytes(const std::string& file, InputForm form);

}  // namespace inspect
