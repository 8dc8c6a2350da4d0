// encode: converts JSON to bytes.

#include <unistd.h>

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/bytes/hex.hpp"
#include "inspect/bytes/input.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"

namespace tool {
namespace {

Bytes encode(const EncodeOptions& options) {
  return encodeJson(messageNamed(options.message), readAll(options.file), options.byteText,
                    options.isFixed     ? Form::Fixed
                    : options.isCompact ? Form::Compact
                                        : Form::AsSent);
}

}  // namespace

void runEncode(const EncodeOptions& options, Session& /*session*/) {
  const Bytes bytes = encode(options);
  // A terminal shows no bytes.
  if (options.isHex || isatty(STDOUT_FILENO) != 0) {
    std::cout << toHex(bytes) << '\n';
  } else {
    std::cout.write(reinterpret_cast<const char*>(bytes.data()),
                    static_cast<std::streamsize>(bytes.size()));
  }
}

}  // namespace tool
