// What mesh-l2vpn is given to read: messages, hexadecimal text, JSON, captures. Its reader and the
// library's accept the same messages, and what a message says survives JSON. A Failure is for JSON
// that is wrong and bytes that are no table; it ends the process anywhere else.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <sstream>

#include "bytes/failure.hpp"
#include "bytes/hex_text.hpp"
#include "captures/capture_file.hpp"
#include "input.hpp"
#include "json/raw_table.hpp"
#include "json/record_json.hpp"
#include "messages/codec.hpp"
#include "texts/explanation.hpp"
#include "texts/html_page.hpp"
#include "tool/bytes/dumps.hpp"
#include "tool/reader/library_reader.hpp"

namespace {

// Enough for what inputs hold. A few bytes can ask for much more, but only for zeros.
constexpr uint64_t largestMemory = uint64_t{1} << 19;

using tool::Bytes;
using tool::Json;
using tool::KnownMessage;

void expect(bool isSo, const KnownMessage& message, const char* what) {
  fuzz::expectNone(isSo ? "" : std::string(message.name) + ": " + what);
}

void expectSurvivesJson(const KnownMessage& message, const tool::OwnedRecord& record) {
  const Json json = tool::toJson(message.schema(), record.data());
  const tool::OwnedRecord again = tool::fromJson(message, tool::parseJson(json.dump()));
  expect(tool::toJson(message.schema(), again.data()) == json, message, "JSON loses something");
  const auto encoded = [&](const Bytes& bytes) {
    return tool::toJson(message.schema(), tool::decode(message, bytes).data());
  };
  expect(encoded(tool::encodeCompact(again)) == json, message, "encoding loses something");
  expect(encoded(tool::encodeAsSent(again)) == json, message, "sending loses something");
}

void readMessage(const KnownMessage& message, std::span<const uint8_t> bytes) {
  const tool::Reading reading = tool::readTable(message, bytes);
  const tool::Verdict verdict = tool::judge(message, bytes);
  fuzz::expectNone(tool::unsoundness(reading, bytes));
  expect(verdict.isAccepted() == reading.isAccepted() && verdict.memory == reading.memory &&
             verdict.faults.size() == reading.faults.size(),
         message, "a reading and its verdict differ");
  std::ostringstream text;
  tool::explain(reading, bytes, true, tool::Colors(), text);
  tool::htmlPage(message, reading, bytes, true);
  if (reading.memory <= largestMemory) {
    expect(tool::libraryAccepts(message, bytes) == reading.isAccepted(), message,
           "the two readers do not agree");
    if (reading.isAccepted()) {
      expectSurvivesJson(message, tool::decode(message, bytes));
    }
  }
}

void readUnknown(std::span<const uint8_t> bytes) {
  try {
    tool::rawTable(bytes);
  } catch (const tool::Failure&) {
    return;
  }
  for (const tool::Candidate& candidate : tool::candidatesFor(bytes)) {
    expect(tool::readTable(*candidate.message, bytes).isAccepted(), *candidate.message,
           "named as what the bytes could be, but it rejects them");
  }
}

void readHexText(std::string_view text) {
  const Bytes bytes(text.begin(), text.end());
  for (const std::string& dump : tool::dumpsOf(bytes)) {
    fuzz::expectNone(tool::fromHexText(dump) == bytes ? "" : "a dump is read otherwise: " + dump);
  }
  try {
    tool::fromHexText(text);
  } catch (const tool::Failure&) {
    return;
  }
}

void readJson(const KnownMessage& message, std::string_view text) {
  std::optional<tool::OwnedRecord> record;
  try {
    record.emplace(tool::fromJson(message, tool::parseJson(text)));
  } catch (const tool::Failure&) {
    return;
  }
  expectSurvivesJson(message, *record);
}

void readCapture(std::span<const uint8_t> bytes) {
  const int file = memfd_create("capture", MFD_CLOEXEC);
  if (file < 0 || write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    std::abort();
  }
  tool::CaptureReader reader("/proc/self/fd/" + std::to_string(file));
  close(file);
  while (const auto table = reader.next()) {
    const KnownMessage* const message = tool::findById(table->id);
    if (message == nullptr || tool::readTable(*message, table->bytes).memory <= largestMemory) {
      tool::tableJson(*table);
      tool::isAccepted(*table);
    }
  }
}

// As the head's second byte has it; its lowest bit is the mutator's.
void read(const fuzz::Head& head, std::span<const uint8_t> body) {
  const KnownMessage& message = tool::messages()[head.message % tool::messages().size()];
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
