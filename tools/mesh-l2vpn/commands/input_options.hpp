// The options of a command that reads one message.
#pragma once

#include <CLI/CLI.hpp>

#include "bytes/input.hpp"
#include "commands/checks.hpp"

namespace tool {

struct InputOptions {
  std::string message;
  std::string file = "-";
  bool isBinary = false;
  bool isHex = false;

  void addTo(CLI::App& command) {
    command.add_option("-m,--message", message, "Name or identifier")->check(notEmpty());
    command.add_option("FILE", file, "Bytes, or their hexadecimal text; - for the standard input")
        ->capture_default_str();
    addFormTo(command);
  }

  void addFormTo(CLI::App& command) {
    CLI::Option* const binary = command.add_flag("--binary", isBinary, "The input is bytes");
    command.add_flag("--hex", isHex, "The input is hexadecimal text")->excludes(binary);
  }

  [[nodiscard]] InputForm form() const {
    return isBinary ? InputForm::Binary : isHex ? InputForm::Hex : InputForm::Guessed;
  }

  [[nodiscard]] std::vector<uint8_t> read() const { return readBytes(file, form()); }
};

}  // namespace tool
