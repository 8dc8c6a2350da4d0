// diff: compares two messages.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/texts/difference.hpp"
#include "inspect/texts/text_table.hpp"

namespace tool {
namespace {

struct Side {
  Bytes bytes;
  Reading reading;
  Json record;
};

Side readSide(const std::string& file, const KnownMessage& message, Bytes bytes, Session& session) {
  Reading reading = readTable(message, bytes);
  for (const Fault& fault : reading.faults) {
    session.say(file + ": " + faultText(fault));
  }
  if (!reading.isAccepted()) {
    throw Failure(Cause::BadInput, file + ": receivers reject this " + std::string(message.name));
  }
  refuseTooMuchMemory(reading);
  Json record = toJson(message.schema(), decode(message, bytes).data());
  return {std::move(bytes), std::move(reading), std::move(record)};
}

// Shortens a value to fit a column.
std::string shortened(const std::string& text) {
  constexpr size_t most = 60;
  constexpr size_t shown = 32;
  if (text.size() > most) {
    return text.substr(0, shown) + "... (" + std::to_string(text.size()) + " characters)";
  }
  return text.empty() ? "-" : text;
}

void print(const std::vector<FieldDifference>& fields, const std::vector<ByteDifference>& bytes,
           const Session& session) {
  if (!fields.empty()) {
    TextTable table({"field", "first", "second"});
    for (const FieldDifference& field : fields) {
      table.add({field.path, shortened(field.one), shortened(field.other)});
    }
    std::cout << table.text(session.colors());
  }
  if (!bytes.empty()) {
    TextTable table({"byte", "in the first", "first", "second"});
    for (const ByteDifference& difference : bytes) {
      table.add({std::to_string(difference.at), difference.meaning, shortened(difference.one),
                 shortened(difference.other)});
    }
    std::cout << (fields.empty() ? "" : "\n") << table.text(session.colors());
  }
}

}  // namespace

void runDiff(const DiffOptions& options, Session& session) {
  if (options.file == "-" && options.second == "-") {
    throw Failure(Cause::Usage, "the standard input cannot be both messages");
  }
  Bytes first = readBytes(options.file, options.form);
  Bytes second = readBytes(options.second, options.form);
  const auto [message, note] = chooseMessage(options.message, first);
  session.say(note);
  const Side one = readSide(options.file, message, std::move(first), session);
  const Side other = readSide(options.second, message, std::move(second), session);
  const auto fields = fieldDifferences(one.record, other.record);
  const auto bytes = byteDifferences(one.bytes, other.bytes, one.reading);
  if (options.isJson) {
    std::cout << differenceJson(fields, bytes, one.bytes.size(), other.bytes.size()).dump(2)
              << '\n';
  } else {
    print(fields, bytes, session);
  }
  if (one.bytes.size() != other.bytes.size()) {
    session.say(std::to_string(one.bytes.size()) + " bytes in the first, " +
                std::to_string(other.bytes.size()) + " in the second");
  }
  const bool isSame = fields.empty() && bytes.empty() && one.bytes.size() == other.bytes.size();
  session.result = isSame ? Exit::Success : Exit::BadInput;
}

}  // namespace tool
