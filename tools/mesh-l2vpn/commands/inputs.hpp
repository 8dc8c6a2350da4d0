// Messages and tables that commands read from files.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "commands/commands.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/reader/identification.hpp"

namespace tool {

// A message's bytes, and what is known of it.
struct Input {
  std::string name;  // of the file, for error texts
  std::vector<uint8_t> bytes;
  const KnownMessage* message = nullptr;   // as its capture tells; null for a plain file
  std::unique_ptr<CaptureReader> capture;  // keeps the message
};

// The message in a file or, if `packet` is given, of a capture. Fails if there is none.
Input readInput(std::unique_ptr<InputFile> file, InputForm form,
                const std::optional<uint64_t>& packet);

// The named message, else the capture's, else the one that fits best. Fails if there is none.
Choice chosenMessage(const std::string& named, const Input& input);

// Fails if tables are to be selected from a file that is no capture.
void refuseSelection(const SelectionOptions& options, const std::string& file);

// Calls take(table) for each line of JSON, as decode and listen print them. Failures name the line.
void readLines(const std::string& file, ByteText form,
               const std::function<void(const Table& table)>& take);

}  // namespace tool
