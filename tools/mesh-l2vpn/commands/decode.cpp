// decode: converts bytes to JSON.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/texts/fault_texts.hpp"
#include "progress.hpp"

namespace tool {
namespace {

int indentOf(const DecodeOptions& options) {
  return options.isOnOneLine ? -1 : 2;
}

void decodeAs(const KnownMessage& message, const Bytes& bytes, const DecodeOptions& options,
              Session& session) {
  const Verdict reading = judge(message, bytes);
  for (const std::string& fault : faultTexts(reading, options.isWhole)) {
    session.say(fault);
    session.result = Exit::BadInput;
  }
  if (!reading.isAccepted()) {
    throw Failure(Cause::BadInput, "receivers reject this " + std::string(message.name));
  }
  const JsonStyle style{options.byteText, indentOf(options), options.isWhole};
  refuseLongText(message.schema(), bytes, style);
  Text text(std::cout);
  writeMessage(text, message.schema(), bytes, style);
  text.append('\n');
  text.flush();
}

// Table by table: takes the memory of one table.
void decodeCapture(std::unique_ptr<InputFile> file, const DecodeOptions& options,
                   Session& session) {
  CaptureReader reader(std::move(file));
  const KnownMessage* const wanted =
      options.message.empty() ? nullptr : &messageNamed(options.message);
  {
    Progress progress(session, "tables");
    Text text(std::cout);
    while (const auto table = reader.next()) {
      if (wanted != nullptr && table->id != wanted->id()) {
        continue;
      }
      if (!writeTable(text, *table, {options.byteText, -1, options.isWhole})) {
        session.result = Exit::BadInput;
      }
      progress.add();
    }
    text.flush();
  }
  reader.throwFault();
}

}  // namespace

void runDecode(const DecodeOptions& options, Session& session) {
  auto file = std::make_unique<InputFile>(options.file);
  if (options.isCapture || (options.form == InputForm::Guessed && isCapture(*file))) {
    return decodeCapture(std::move(file), options, session);
  }
  const Bytes bytes = readBytes(*file, options.form);
  if (options.message.empty()) {
    std::cout << identification(bytes).dump(indentOf(options)) << '\n';
  } else {
    decodeAs(messageNamed(options.message), bytes, options, session);
  }
}

}  // namespace tool
