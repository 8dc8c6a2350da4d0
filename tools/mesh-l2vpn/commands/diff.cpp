// diff: compares two messages, or the tables of two captures.

#include <deque>
#include <iostream>

#include "commands/inputs.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/identification.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/schema/facts.hpp"
#include "inspect/texts/difference.hpp"
#include "inspect/texts/fault_texts.hpp"
#include "inspect/texts/text_table.hpp"

namespace tool {
namespace {

// Fails if receivers reject the message.
void judgeSide(const Input& input, const KnownMessage& message, bool isWhole,
               const Session& session) {
  const Verdict reading = judge(message, input.bytes);
  for (const std::string& fault : faultTexts(reading, isWhole)) {
    session.say(input.name + ": " + fault);
  }
  if (!reading.isAccepted()) {
    throw Failure(Cause::BadInput,
                  input.name + ": receivers reject this " + std::string(message.name));
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

void compareMessages(const DiffOptions& options, const Input& one, const Input& other,
                     Session& session) {
  const auto [message, note] = chosenMessage(options.message, one);
  session.say(note);
  judgeSide(one, message, options.isWhole, session);
  judgeSide(other, message, options.isWhole, session);
  const Bytes& first = one.bytes;
  const Bytes& second = other.bytes;
  uint64_t memory = first.size() + second.size();
  const Json record = recordJson(message, first, options.isWhole, memory);
  const auto fields =
      fieldDifferences(record, recordJson(message, second, options.isWhole, memory));
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

// A selected table of a capture, kept.
struct Kept {
  Table table;
  Bytes bytes;

  [[nodiscard]] bool isLike(const Kept& other) const {
    return table.id == other.table.id && table.source == other.table.source &&
           table.destination == other.table.destination;
  }
};

// The next tables of a capture.
class Window {
 public:
  Window(std::unique_ptr<InputFile> file, const Selection& selection)
      : reader_(std::move(file)), selection_(selection) {
    fill();
  }

  [[nodiscard]] const std::deque<Kept>& tables() const { return tables_; }
  void drop() {
    tables_.pop_front();
    fill();
  }
  // How far ahead the next table like this one is; SIZE_MAX if there is none.
  [[nodiscard]] size_t find(const Kept& wanted) const {
    const auto found =
        std::ranges::find_if(tables_, [&wanted](const Kept& each) { return each.isLike(wanted); });
    return found == tables_.end() ? SIZE_MAX : static_cast<size_t>(found - tables_.begin());
  }
  void throwFault() const { reader_.throwFault(); }

 private:
  static constexpr size_t size = 64;

  void fill() {
    while (tables_.size() < size) {
      const auto table = nextSelected(reader_, selection_);
      if (!table) {
        return;
      }
      tables_.push_back({*table, {table->bytes.begin(), table->bytes.end()}});
      tables_.back().table.bytes = tables_.back().bytes;
    }
  }

  CaptureReader reader_;
  const Selection& selection_;
  std::deque<Kept> tables_;
};

std::string nameOf(const Table& table) {
  const KnownMessage* const message = messageOf(table);
  return message == nullptr ? "identifier " + hex(table.id) : std::string(message->name);
}

std::string titleOf(const Table& table) {
  return "packet " + std::to_string(table.packet) + ", " + nameOf(table) + " from node " +
         std::to_string(table.source) + " to node " + std::to_string(table.destination);
}

// The tables of two captures in their order. Where they are of different messages or nodes, the
// nearest two that are alike are the next pair, and those before them are in one capture alone.
class CaptureComparison {
 public:
  CaptureComparison(const DiffOptions& options, Session& session, std::unique_ptr<InputFile> one,
                    std::unique_ptr<InputFile> other)
      : options_(options),
        session_(session),
        selection_(selectionOf(options, options.message)),
        one_(std::move(one), selection_),
        other_(std::move(other), selection_) {}

  void run() {
    std::cout << (options_.isJson ? "[" : "");
    while (!one_.tables().empty() || !other_.tables().empty()) {
      if (other_.tables().empty()) {
        alone(one_, "first");
      } else if (one_.tables().empty()) {
        alone(other_, "second");
      } else {
        const size_t ahead = other_.find(one_.tables().front());
        const size_t behind = one_.find(other_.tables().front());
        if (ahead == 0) {
          pair();
        } else if (ahead < behind) {
          alone(other_, "second");
        } else {
          alone(one_, "first");
        }
      }
    }
    std::cout << (options_.isJson ? "\n]\n" : "");
    session_.result = count_ == 0 ? Exit::Success : Exit::BadInput;
    session_.say(std::to_string(pairs_) +
                 " pairs of tables, differences: " + std::to_string(count_));
    one_.throwFault();
    other_.throwFault();
  }

 private:
  void alone(Window& window, const std::string& side) {
    ++count_;
    const Table& table = window.tables().front().table;
    if (options_.isJson) {
      printItem({{"only", side}, {"packet", table.packet}, {"message", nameOf(table)}});
    } else {
      std::cout << titleOf(table) << ": only in the " << side << '\n';
    }
    window.drop();
  }

  // As an item of an array.
  void printItem(const Json& found) const {
    std::cout << (count_ == 1 ? "\n" : ",\n") << found.dump(2);
  }

  void pair() {
    const Kept& one = one_.tables().front();
    const Kept& other = other_.tables().front();
    ++pairs_;
    if (one.bytes != other.bytes || one.table.extra != other.table.extra) {
      ++count_;
      show(one, other);
    }
    one_.drop();
    other_.drop();
  }

  // The differences of the bytes, if one of the records cannot be shown.
  [[nodiscard]] std::vector<FieldDifference> recordDifferences(const Kept& one,
                                                               const Kept& other) const {
    if (isAccepted(one.table) && isAccepted(other.table)) {
      uint64_t memory = one.bytes.size() + other.bytes.size();
      const auto recordOf = [&](const Kept& each) {
        return recordJson(*messageOf(each.table), each.bytes, options_.isWhole, memory);
      };
      try {
        const Json record = recordOf(one);
        return fieldDifferences(record, recordOf(other));
      } catch (const Failure& failure) {
        session_.say(titleOf(one.table) + ": " + failure.what());
      }
    }
    return fieldDifferences(toHex(one.bytes), toHex(other.bytes));
  }

  void show(const Kept& one, const Kept& other) {
    auto fields = recordDifferences(one, other);
    if (one.table.extra != other.table.extra) {
      fields.push_back(
          {"extra", std::to_string(one.table.extra), std::to_string(other.table.extra)});
    }
    if (options_.isJson) {
      Json found = {{"packet", one.table.packet},
                    {"secondPacket", other.table.packet},
                    {"message", nameOf(one.table)}};
      found.update(differenceJson(fields, {}, one.bytes.size(), other.bytes.size()));
      return printItem(found);
    }
    std::cout << titleOf(one.table) << ", and packet " << other.table.packet << ":\n";
    print(fields, {}, session_);
    if (fields.empty()) {
      std::cout << "the same fields, other bytes\n";
    }
  }

  const DiffOptions& options_;
  Session& session_;
  const Selection selection_;
  Window one_;
  Window other_;
  uint64_t pairs_ = 0;
  uint64_t count_ = 0;
};

}  // namespace

void runDiff(const DiffOptions& options, Session& session) {
  if (options.file == "-" && options.second == "-") {
    throw Failure(Cause::Usage, "the standard input cannot be both messages");
  }
  auto first = std::make_unique<InputFile>(options.file);
  auto second = std::make_unique<InputFile>(options.second);
  const bool isGuessed = options.form == InputForm::Guessed;
  const bool isOfCapture[] = {isGuessed && isCapture(*first), isGuessed && isCapture(*second)};
  if (!options.packet && isOfCapture[0] && isOfCapture[1]) {
    return CaptureComparison(options, session, std::move(first), std::move(second)).run();
  }
  // A packet may be compared with a message in a file.
  const auto packetOf = [&options](bool isOne) {
    return isOne ? options.packet : std::optional<uint64_t>();
  };
  const Input one = readInput(std::move(first), options.form, packetOf(isOfCapture[0]));
  const Input other = readInput(std::move(second), options.form, packetOf(isOfCapture[1]));
  compareMessages(options, one, other, session);
}

}  // namespace tool
