// encode: JSON becomes bytes.

#include <unistd.h>

#include <iostream>

#include "bytes/hex.hpp"
#include "bytes/input.hpp"
#include "commands/byte_text_option.hpp"
#include "commands/commands.hpp"
#include "json/record_json.hpp"
#include "messages/codec.hpp"

namespace tool {
namespace {

struct Options {
  std::string message;
  std::string file = "-";
  ByteTextOption bytes;
  bool isFixed = false;
  bool isCompact = false;
  bool isHex = false;
};

Bytes encode(const Options& options) {
  const Message& message = messageNamed(options.message);
  const OwnedRecord record =
      fromJson(message, parseJson(readAll(options.file)), options.bytes.form());
  return options.isFixed     ? encodeFixed(record)
         : options.isCompact ? encodeCompact(record)
                             : encodeAsSent(record);
}

void run(const Options& options) {
  const Bytes bytes = encode(options);
  // Nobody wants bytes on a terminal.
  if (options.isHex || isatty(STDOUT_FILENO) != 0) {
    std::cout << toHex(bytes) << '\n';
  } else {
    std::cout.write(reinterpret_cast<const char*>(bytes.data()),
                    static_cast<std::streamsize>(bytes.size()));
  }
}

}  // namespace

void addEncode(CLI::App& app, Session& /*session*/) {
  CLI::App* const command =
      app.add_subcommand("encode", "JSON in, bytes out; what is missing is 0");
  const auto options = makeOptions<Options>();
  command->add_option("-m,--message", options->message, "Name or identifier")->required();
  command->add_option("FILE", options->file, "JSON; - for the standard input")
      ->capture_default_str();
  CLI::Option* const fixed =
      command->add_flag("--fixed", options->isFixed, "In the fixed arrangement");
  command->add_flag("--compact", options->isCompact, "In the compact arrangement")->excludes(fixed);
  options->bytes.addTo(*command);
  command->add_flag("--hex", options->isHex, "As hexadecimal text, as on a terminal");
  command->footer(
      "Without --fixed or --compact in the arrangement that the message is sent in.\n\n"
      "Examples:\n"
      "  echo '{\"f0\": 7, \"f1\": {\"f0\": 42}}' |\n"
      "    mesh-l2vpn encode -m l2vpn_sync_vpls_ac_update > update.bin\n"
      "  mesh-l2vpn encode -m dbginfo_key_l2vpn --hex key.json");
  command->callback([options] { run(*options); });
}

}  // namespace tool
