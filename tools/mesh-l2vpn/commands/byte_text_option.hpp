// The option of a command whose JSON has byte strings.
#pragma once

#include <CLI/CLI.hpp>

#include "bytes/byte_text.hpp"

namespace tool {

struct ByteTextOption {
  bool isBase64 = false;

  void addTo(CLI::App& command) {
    command.add_flag("--base64", isBase64, "Byte strings of records are base64, not hexadecimal");
  }

  [[nodiscard]] ByteText form() const { return isBase64 ? ByteText::Base64 : ByteText::Hex; }
};

}  // namespace tool
