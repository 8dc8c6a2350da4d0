// What mesh-l2vpn is given to read: messages, hexadecimal text, JSON, captures. Its reader and the
// library's accept the same messages, and what a message says survives JSON. A Failure is for JSON
// that is wrong and bytes that are no table; it ends the process anywhere else.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "input.hpp"
#include "inspect/bytes/failure.hpp"
#include "inspect/bytes/hex_text.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/acceptance.hpp"
#include "inspect/reader/identification.hpp"
#include "inspect/texts/explanation.hpp"
#include "inspect/texts/html_page.hpp"
#include "tests/inspect/bytes/dumps.hpp"
#include "tests/inspect/reader/library_reader.hpp"

namespace {

// Enough for what inputs hold. A few bytes can ask for much more, but only for zeros.
constexpr uint64_t largestMemory = uint64_t{1} << 19;

using inspect::Bytes;
using inspect::Json;
using inspect::KnownMessage;

void expect(bool isSo, const KnownMessage& message, const char* what) {
  fuzz::expectNone(isSo ? "" : std::string(message.name) + ": " + what);
}

void expectSurvivesJson(const KnownMessage& message, const inspect::OwnedRecord& record) {
  const Json json = inspect::toJson(message.schema(), record.data());
  const inspect::OwnedRecord again = inspect::fromJson(message, inspect::parseJson(json.dump()));
  expect(inspect::toJson(message.schema(), again.data()) == json, message, "JSON loses something");
  const auto encoded = [&](const Bytes& bytes) {
    return inspect::toJson(message.schema(), inspect::decode(message, bytes).data());
  };
  expect(encoded(inspect::encodeCompact(again)) == json, message, "encoding loses something");
  expect(encoded(inspect::encode(again, inspect::Form::AsSent)) == json, message,
         "sending loses something");
}

// The run-time decoder and __unpack fill in the same.
void expectUnpacksAlike(const KnownMessage& message, std::span<const uint8_t> bytes) {
  const harness::Operations& operations = harness::operationsOf(message.name);
  std::vector<uint64_t> record((message.schema().size + 7) / 8);
  auto* const into = reinterpret_cast<uint8_t*>(record.data());
  operations.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), into);
  expect(inspect::toJson(message.schema(), into) ==
             inspect::toJson(message.schema(), inspect::decode(message, bytes).data()),
         message, "__unpack fills in something else");
  operations.freeUnpacked(into);
}

void readMessage(const KnownMessage& message, std::span<const uint8_t> bytes) {
  const inspect::Reading reading = inspect::readTable(message, bytes);
  const inspect::Verdict verdict = inspect::judge(message, bytes);
  const inspect::Acceptance acceptance = inspect::acceptanceOf(message.schema(), bytes);
  fuzz::expectNone(inspect::unsoundness(reading, bytes));
  expect(verdict.isAccepted() == reading.isAccepted() && verdict.memory == reading.memory &&
             verdict.faults.size() == reading.faults.size(),
         message, "a reading and its verdict differ");
  expect((acceptance != inspect::Acceptance::Rejected) == verdict.isAccepted() &&
             (acceptance == inspect::Acceptance::Accepted) == verdict.faults.empty(),
         message, "the quick verdict is another");
  inspect::Text text;
  inspect::explain(message, reading, bytes, true, inspect::Colors(), text);
  inspect::htmlPage(message, reading, bytes, true);
  if (reading.memory <= largestMemory) {
    expect(inspect::libraryAccepts(message, bytes) == reading.isAccepted(), message,
           "the two readers do not agree");
    if (reading.isAccepted()) {
      expectUnpacksAlike(message, bytes);
      expectSurvivesJson(message, inspect::decode(message, bytes));
    }
  }
}

void readUnknown(std::span<const uint8_t> bytes) {
  try {
    inspect::rawTable(bytes);
  } catch (const inspect::Failure&) {
    return;
  }
  for (const inspect::Candidate& candidate : inspect::candidatesFor(bytes)) {
    expect(inspect::judge(*candidate.message, bytes).isAccepted() ==
               (candidate.fit != inspect::Fit::Rejected),
           *candidate.message, "named with a fit that is not that of the bytes");
  }
}

void readHexText(std::string_view text) {
  const Bytes bytes(text.begin(), text.end());
  for (const std::string& dump : inspect::dumpsOf(bytes)) {
    fuzz::expectNone(inspect::fromHexText(dump) == bytes ? ""
                                                         : "a dump is read otherwise: " + dump);
  }
  try {
    inspect::fromHexText(text);
  } catch (const inspect::Failure&) {
    return;
  }
}

void readJson(const KnownMessage& message, std::string_view text) {
  std::optional<inspect::OwnedRecord> record;
  try {
    record.emplace(inspect::fromJson(message, inspect::parseJson(text)));
  } catch (const inspect::Failure&) {
    return;
  }
  expectSurvivesJson(message, *record);
}

void readCapture(std::span<const uint8_t> bytes) {
  const int file = memfd_create("capture", MFD_CLOEXEC);
  if (file < 0 || write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    std::abort();
  }
  inspect::CaptureReader reader("/proc/self/fd/" + std::to_string(file));
  close(file);
  while (const auto table = reader.next()) {
    const KnownMessage* const message = inspect::findById(table->id);
    if (message == nullptr || inspect::readTable(*message, table->bytes).memory <= largestMemory) {
      inspect::Text line;
      inspect::writeTable(line, *table);
      inspect::parseJson(line.view());
      inspect::isAccepted(*table);
    }
  }
}

// As the head's second byte has it; its lowest bit is the mutator's.
void read(const fuzz::Head& head, std::span<const uint8_t> body) {
  const KnownMessage& message = inspect::messages()[head.message % inspect::messages().size()];
  const std::string_view text(reinterpret_cast<const char*>(body.data()), body.size());
  switch (head.choices >> 1 & 7) {
    case 0:
      return readUnknown(body);
    case 1:
      return readHexText(text);
    case 2:
      return readJson(message, text);
    case 3:
      return readCapture(body);
    default:
      return readMessage(message, body);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < fuzz::headSize) {
    return -1;
  }
  // The allocation ends with the bytes.
  const std::vector<uint8_t> body(data + fuzz::headSize, data + size);
  read({data[0], data[1]}, body);
  return 0;
}
