// encode: converts JSON to bytes: one record to a message, lines of tables to a capture.

#include <unistd.h>

#include <iostream>

#include "commands/inputs.hpp"
#include "inspect/bytes/hex.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"

namespace tool {
namespace {

Bytes encode(const EncodeOptions& options) {
  if (options.packet) {
    return readInput(std::make_unique<InputFile>(options.file), InputForm::Guessed, options.packet)
        .bytes;
  }
  return encodeJson(messageNamed(options.message), readAll(options.file), options.byteText,
                    options.isFixed     ? Form::Fixed
                    : options.isCompact ? Form::Compact
                                        : Form::AsSent);
}

void encodeCapture(const EncodeOptions& options, Session& session) {
  if (isatty(STDOUT_FILENO) != 0) {
    throw Failure(Cause::Usage, "a terminal shows no capture; write it to a file with >");
  }
  CaptureWriter writer("-");
  uint64_t written = 0;
  uint64_t missed = 0;
  readLines(options.file, options.byteText, [&](const Table& table) {
    writer.write(table);
    ++written;
    missed += table.missedBefore;
  });
  writer.writeStatistics(written, missed);
  writer.close();
  session.say(std::to_string(written) + " tables written");
}

}  // namespace

void runEncode(const EncodeOptions& options, Session& session) {
  if (options.isCapture) {
    return encodeCapture(options, session);
  }
  if (options.message.empty() && !options.packet) {
    throw Failure(Cause::Usage, "encode: one of --message, --capture and --packet is required");
  }
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
