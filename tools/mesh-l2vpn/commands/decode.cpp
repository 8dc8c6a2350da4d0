// decode: converts bytes to JSON.

#include <iostream>

#include "commands/inputs.hpp"
#include "inspect/json/message_text.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/reader/identification.hpp"
#include "inspect/reader/own_encoding.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/texts/fault_texts.hpp"
#include "progress.hpp"

namespace tool {
namespace {

int indentOf(const DecodeOptions& options) {
  return options.isOnOneLine ? -1 : 2;
}

// Says which messages have exactly these bytes, if the given one does not.
void sayBetterFit(const KnownMessage& message, const Input& input, Session& session) {
  if (isOwnEncoding(message, input.bytes)) {
    return;
  }
  std::string names;
  for (const Candidate& candidate : candidatesFor(input.bytes)) {
    if (candidate.fit == Fit::Exact) {
      names.append(names.empty() ? "" : ", ").append(candidate.message->name);
    }
  }
  if (!names.empty()) {
    session.say(input.name + ": fits better: " + names);
  }
}

void decodeAs(const KnownMessage& message, const Input& input, const DecodeOptions& options,
              Session& session) {
  const Bytes& bytes = input.bytes;
  const Verdict reading = judge(message, bytes);
  for (const std::string& fault : faultTexts(reading, options.style.isWhole)) {
    session.say(input.name + ": " + fault);
    session.result = Exit::BadInput;
  }
  sayBetterFit(message, input, session);
  if (!reading.isAccepted()) {
    throw Failure(Cause::BadInput,
                  input.name + ": receivers reject this " + std::string(message.name));
  }
  JsonStyle style = options.style;
  style.indent = indentOf(options);
  refuseLongText(message.schema(), bytes, style);
  Text text(std::cout);
  writeMessage(text, message.schema(), bytes, style);
  text.append('\n');
  text.flush();
}

// Table by table: takes the memory of one table.
void decodeCapture(std::unique_ptr<InputFile> file, const DecodeOptions& options,
                   Session& session) {
  Text text(std::cout);
  // Whoever reads a growing capture sees each table at once.
  file->setBeforeWaiting([&text] {
    text.flush();
    std::cout.flush();
  });
  const std::string name = file->name();
  CaptureReader reader(std::move(file));
  const Selection selection = selectionOf(options, options.message);
  uint64_t decoded = 0;
  {
    Progress progress(session, "tables");
    while (const auto table = nextSelected(reader, selection)) {
      ++decoded;
      if (!writeTable(text, *table, options.style)) {
        session.result = Exit::BadInput;
      }
      progress.add(reader.progress());
    }
  }
  text.flush();
  if (decoded == 0 && reader.fault().empty()) {
    session.say(name + ": no such tables, packets: " + std::to_string(reader.packets()));
  }
  reader.throwFault();
}

}  // namespace

void runDecode(const DecodeOptions& options, Session& session) {
  auto file = std::make_unique<InputFile>(options.file);
  if (options.isCapture || (options.form == InputForm::Guessed && isCapture(*file))) {
    return decodeCapture(std::move(file), options, session);
  }
  refuseSelection(options, options.file);
  const Input input{options.file, readBytes(*file, options.form), nullptr, nullptr};
  if (!options.message.empty()) {
    return decodeAs(messageNamed(options.message), input, options, session);
  }
  try {
    std::cout << identification(input.bytes).dump(indentOf(options)) << '\n';
  } catch (const Failure& failure) {
    throw Failure(failure.cause(), input.name + ": " + failure.what());
  }
}

}  // namespace tool
