// Options that several commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>

#include "commands/commands.hpp"

namespace tool {

inline CLI::Validator notEmpty() {
  return {[](std::string& text) { return text.empty() ? "is empty" : std::string(); }, ""};
}

// CLI11 wraps -1, saturates large numbers, takes '' for 0 and reads 010 as octal.
inline CLI::Validator wholeNumber(uint64_t least, uint64_t most) {
  return {[least, most](std::string& text) {
            const bool isHex = text.starts_with("0x") || text.starts_with("0X");
            const char* const begin = text.data() + (isHex ? 2 : 0);
            const char* const end = text.data() + text.size();
            uint64_t value = 0;
            const auto [stop, error] = std::from_chars(begin, end, value, isHex ? 16 : 10);
            if (!isHex && text.size() > 1 && text[0] == '0' && stop == end) {
              return "'" + text + "' has a leading zero; hexadecimal numbers begin with 0x";
            }
            return error == std::errc{} && stop == end && value >= least && value <= most
                       ? std::string()
                       : "'" + text + "' is not a whole number from " + std::to_string(least) +
                             " to " + std::to_string(most);
          },
          ""};
}

// A finite number above 0.
inline CLI::Validator positive() {
  return {[](std::string& text) {
            double value = 0;
            const auto [stop, error] =
                std::from_chars(text.data(), text.data() + text.size(), value);
            return error == std::errc{} && stop == text.data() + text.size() &&
                           std::isfinite(value) && value > 0
                       ? std::string()
                       : text + " is not a number above 0";
          },
          "POSITIVE"};
}

inline CLI::Option* addMessage(CLI::App& command, std::string& message) {
  return command.add_option("-m,--message", message, "Name or identifier")->check(notEmpty());
}

inline void addJson(CLI::App& command, bool& isJson,
                    const char* description = "Print a JSON object") {
  command.add_flag("--json", isJson, description);
}

inline void addWhole(CLI::App& command, bool& isWhole) {
  command.add_flag("--all", isWhole, "Show what is long or repeated in full");
}

// Of JSON that is read; JSON that is written has more.
inline void addByteText(CLI::App& command, ByteText& form) {
  command.add_flag_callback(
      "--base64", [&form] { form = ByteText::Base64; },
      "Byte strings in JSON are base64, not hexadecimal");
}

inline void addStyle(CLI::App& command, JsonStyle& style) {
  addByteText(command, style.byteText);
  command.add_flag(
      "--big-as-text", style.isBigText,
      "64-bit numbers in JSON are strings with 0x: jq 1.6 and JavaScript round numbers");
  addWhole(command, style.isWhole);
}

inline void addPacket(CLI::App& command, std::optional<uint64_t>& packet) {
  command.add_option("--packet", packet, "Only this packet of a capture, from 1")
      ->check(wholeNumber(1, UINT64_MAX));
}

inline void addSelection(CLI::App& command, SelectionOptions& options) {
  addPacket(command, options.packet);
  command.add_option("--source", options.source, "Only tables from this node")
      ->check(wholeNumber(0, UINT32_MAX));
  command.add_option("--destination", options.destination, "Only tables to this node")
      ->check(wholeNumber(0, UINT32_MAX));
  command.add_option("--since", options.since, "Only from this time on: 2026-11-21T09:28:00Z")
      ->check(notEmpty());
  command.add_option("--until", options.until, "Only up to this time")->check(notEmpty());
  command
      .add_option("--where", options.where,
                  "Only where this holds: 'f1.f0 == 42'; several: where all hold")
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all();
}

inline void addInputForm(CLI::App& command, InputForm& form) {
  CLI::Option* const binary = command.add_flag_callback(
      "--binary", [&form] { form = InputForm::Binary; }, "The input is bytes");
  command
      .add_flag_callback(
          "--hex", [&form] { form = InputForm::Hex; }, "The input is hexadecimal text")
      ->excludes(binary);
}

inline void addInput(CLI::App& command, InputOptions& options) {
  addMessage(command, options.message);
  command.add_option("FILE", options.file, "Bytes or hexadecimal text; - for the standard input")
      ->capture_default_str();
  addInputForm(command, options.form);
}

inline void addJsonInput(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "JSON; - for the standard input")->capture_default_str();
}

inline void addMiddleware(CLI::App& command, std::string& middleware) {
  command.add_option("--middleware", middleware, "Path of a libzarnimesh")
      ->envname("MESH_L2VPN_MIDDLEWARE");
}

inline CLI::Option* addSender(CLI::App& command, SenderOptions& options,
                              const char* toDescription) {
  addMiddleware(command, options.middleware);
  command
      .add_option("--from", options.from, "Address of the sending node; default: a temporary one")
      ->check(wholeNumber(1, UINT32_MAX));
  return command.add_option("--to", options.to, toDescription)->check(wholeNumber(0, UINT32_MAX));
}

inline void addReceiver(CLI::App& command, ReceiverOptions& options) {
  addMiddleware(command, options.middleware);
  command.add_option("ADDRESS", options.address, "Address of this node")
      ->required()
      ->check(wholeNumber(0, UINT32_MAX));
  command.add_option("--count", options.count, "Stop after this many tables")
      ->check(wholeNumber(1, UINT64_MAX));
  command.add_option("--seconds", options.seconds, "Stop after this many seconds")
      ->check(positive());
}

inline void addCaptureInput(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "Capture; - for the standard input")->required();
}

}  // namespace tool
