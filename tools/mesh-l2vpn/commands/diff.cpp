// diff: compares two messages.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/identification.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/texts/difference.hpp"
#include "inspect/texts/fault_texts.hpp"
#include "inspect/texts/text_table.hpp"

namespace tool {
namespace {

// Fails if receivers reject the message.
void judgeSide(const std::string& file, const KnownMessage& message, const Bytes& bytes,
               bool isWhole, const Session& session) {
  const Verdict reading = judge(message, bytes);
  for (const std::string& fault : faultTexts(reading, isWhole)) {
    session.say(file + ": " + fault);
  }
  if (!reading.isAccepted()) {
    throw Failure(Cause::BadInput, file + ": receivers reject this " + std::string(message.name));
  }
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
  const Bytes first = readBytes(options.file, options.form);
  const Bytes second = readBytes(options.second, options.form);
  const auto [message, note] = chooseMessage(options.message, first);
  session.say(note);
  judgeSide(options.file, message, first, options.isWhole, session);
  judgeSide(options.second, message, second, options.isWhole, session);
  uint64_t memory = first.size() + second.size();
  const Json one = recordJson(message, first, options.isWhole, memory);
  const Json other = recordJson(message, second, options.isWhole, memory);
  const auto fields = fieldDifferences(one, other);
  const auto bytes = byteDifferences(first, second, readTable(message, first));
  if (options.isJson) {
    std::cout << differenceJson(fields, bytes, first.size(), second.size()).dump(2) << '\n';
  } else {
    print(fields, bytes, session);
  }
  if (first.size() != second.size()) {
    session.say(std::to_string(first.size()) + " bytes in the first, " +
                std::to_string(second.size()) + " in the second");
  }
  if (fields.size() == mostDifferences || bytes.size() == mostDifferences) {
    session.say("only the first " + std::to_string(mostDifferences) + " differences are shown");
  }
  const bool isSame = fields.empty() && bytes.empty() && first.size() == second.size();
  session.result = isSame ? Exit::Success : Exit::BadInput;
}

}  // namespace tool
