// What commands read: files, or the standard input.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

enum class InputForm {
  Guessed,  // hexadecimal when all of it is; no message is, as each has bytes of zero
  Binary,
  Hex,
};

// The whole of a file, or of the standard input for "-".
std::string readAll(const std::string& file);

// A message's bytes from a file.
std::vector<uint8_t> readBytes(const std::string& file, InputForm form);

}  // namespace tool
