// What commands read: files, or the standard input, once and front to back, so that pipes serve
// too.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum class InputForm {
  Guessed,  // hexadecimal when it is text; no message is, as each has bytes of zero
  Binary,
  Hex,
};

class InputFile {
 public:
  // "-" is the standard input. Fails where the file cannot be opened, or is a directory.
  explicit InputFile(std::string name);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }

  // Whether the file goes on with these bytes, which are still to be read.
  bool goesOnWith(std::string_view bytes);

  // How many bytes were there; fewer than were asked for at the end, at an error, and when the user
  // interrupts a command that catches it.
  size_t read(void* to, size_t size);

  // Of the system, 0 while there is none.
  [[nodiscard]] int error() const { return error_; }

 private:
  bool fill();

  std::string name_;
  int descriptor_;
  int error_ = 0;
  std::vector<char> buffer_;
  size_t begin_ = 0;  // of what was not taken yet
  size_t end_ = 0;
};

// The whole of a file, or of the standard input for "-".
std::string readAll(const std::string& file);

// Whether a file begins as a capture (pcapng) does.
bool isCapture(InputFile& file);

// A message's bytes from a file. Fails for a capture, unless its form is said to be binary.
std::vector<uint8_t> readBytes(InputFile& file, InputForm form);
std::vector<uint8_t> readBytes(const std::string& file, InputForm form);

}  // namespace tool
