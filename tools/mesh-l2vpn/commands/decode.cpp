// decode: converts bytes to JSON.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/table_reader.hpp"
#include "progress.hpp"

namespace tool {
namespace {

int indentOf(const DecodeOptions& options) {
  return options.isOnOneLine ? -1 : 2;
}

void decodeAs(const KnownMessage& message, const Bytes& bytes, const DecodeOptions& options,
              Session& session) {
  const Verdict reading = judge(message, bytes);
  for (const Fault& fault : reading.faults) {
    session.say(faultText(fault));
    session.result = Exit::BadInput;
  }
  if (!reading.isAccepted()) {
    throw Failure(Cause::BadInput, "receivers reject this " + std::string(message.name));
  }
  refuseTooMuchMemory(reading);
  const OwnedRecord record = decode(message, bytes);
  Text text(std::cout);
  writeRecord(text, message.schema(), record.data(), {options.byteText, indentOf(options)});
  text.append('\n');
  text.flush();
}

std::string cutText(const Table& table) {
  const size_t held = table.bytes.size();
  return "the capture holds " + std::to_string(held) + " of its " +
         std::to_string(held + table.cutOff) + " bytes";
}

// Table by table: takes the memory of one table.
void decodeCapture(std::unique_ptr<InputFile> file, const DecodeOptions& options,
                   Session& session) {
  CaptureReader reader(std::move(file));
  const KnownMessage* const wanted =
      options.message.empty() ? nullptr : &messageNamed(options.message);
  {
    Progress progress(session, "tables");
    while (const auto table = reader.next()) {
      if (wanted != nullptr && table->id != wanted->id()) {
        continue;
      }
      Json json = tableJson(*table, options.byteText);
      if (table->cutOff != 0) {
        json["faults"].push_back(cutText(*table));
      }
      std::cout << json.dump() << '\n';
      session.result =
          json.contains("record") && !json.contains("faults") ? session.result : Exit::BadInput;
      progress.add();
    }
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
