#include "support/comparison.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <sstream>

#include "host/binding.hpp"
#include "model/reader.hpp"
#include "model/record_image.hpp"
#include "model/writer.hpp"
#include "support/guarded_buffer.hpp"
#include "support/recorder.hpp"

namespace harness {
namespace {

constexpr uint8_t untouched = 0xA5;

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += "    " + line + "\n";
  }
  return text.empty() ? "    (nothing)\n" : text;
}

std::string compareTraces(const char* call, const std::vector<std::string>& engine,
                          const std::vector<std::string>& expected) {
  if (engine == expected) {
    return "";
  }
  return std::string(call) + " called\n" + joined(engine) + "  and should have called\n" +
         joined(expected);
}

template <typename Number>
std::string compareNumbers(const char* what, Number engine, Number expected) {
  if (engine == expected) {
    return "";
  }
  std::ostringstream text;
  text << what << " is " << engine << " and should be " << expected << "\n";
  return text.str();
}

std::string compareBytes(const char* what, const std::vector<uint8_t>& engine,
                         const model::WrittenBytes& expected, uint8_t left) {
  std::vector<uint8_t> filled;
  for (const std::optional<uint8_t>& byte : expected) {
    filled.push_back(byte.value_or(left));
  }
  if (engine == filled) {
    return "";
  }
  return std::string(what) + " is\n" + model::print(engine) + "\n  and should be\n" +
         model::print(filled) + "\n";
}

std::string withContext(const std::string& difference, const Operations& operations,
                        const char* call, bool reversed, std::span<const uint8_t> bytes) {
  if (difference.empty()) {
    return "";
  }
  return std::string(operations.name) + "__" + call + (reversed ? ", byte-reversed" : "") + ": " +
         difference + "  given\n" + model::print({bytes.begin(), bytes.end()}) + "\n";
}

std::string compareRelease(const Operations& operations, const model::Message& message,
                           const model::Value& decoded, void* record) {
  std::string difference;
  model::Value left = decoded;
  for (const char* call : {"_free__unpacked", "the second _free__unpacked"}) {
    const std::vector<std::string> expected = model::release(message, left);
    operations.freeUnpacked(record);
    difference += compareTraces(call, takeTrace(), expected);
  }
  return difference;
}

}  // namespace

void useByteOrder(const Operations& operations, bool reversed) {
  for (mesh::host::Module* const module : {operations.receive, operations.send}) {
    mesh::host::bindUnpackAllocator(*module);
    module->swapBytes.store(reversed ? 1 : 0);
  }
}

std::string compareUnpack(const Operations& operations, std::span<const uint8_t> bytes,
                          bool reversed, int failingAllocation, bool guarded) {
  const model::Message& message = model::message(operations.name);
  const auto length = static_cast<uint32_t>(bytes.size());
  useByteOrder(operations, reversed);
  resetRecorder();
  recorder().failingAllocation = failingAllocation;

  model::RecordImage record(message, untouched);
  const std::vector<uint8_t> before = record.bytes();
  // A copy of the same alignment that ends with its block, where a sanitizer sees the first byte
  // beyond; or one that ends with its page.
  const size_t shift = reinterpret_cast<uintptr_t>(bytes.data()) % 8;
  const auto block = std::make_unique<uint8_t[]>(shift + bytes.size());
  std::copy(bytes.begin(), bytes.end(), block.get() + shift);
  const uint8_t* data = block.get() + shift;
  std::optional<GuardedBuffer> guard;
  if (guarded) {
    guard.emplace(bytes);
    data = guard->data();
  }
  const uint32_t returned = operations.unpack(data, length, record.data());

  const model::UnpackResult expected =
      model::unpack(message, data, length, false, reversed, failingAllocation);
  std::string difference = compareNumbers("the result", returned, expected.returned) +
                           compareTraces("it", takeTrace(), expected.trace);
  if (!expected.recordTouched) {
    if (record.bytes() != before) {
      difference += "the record was touched\n";
    }
  } else if (difference.empty()) {
    // Only a record whose calls were as expected has pointers that may be followed.
    const model::Value decoded = model::load(message, record.data());
    if (!(decoded == expected.record)) {
      difference += "the record differs at " + model::difference(decoded, expected.record) + "\n";
    }
    difference += compareRelease(operations, message, expected.record, record.data());
    difference += compareNumbers("the number of blocks kept", recorder().blocks.size(), size_t{0});
  }
  return withContext(difference, operations, "unpack", reversed, bytes);
}

std::string comparePack(const Operations& operations, const model::Value& value, uint32_t room,
                        bool reversed) {
  const model::Message& message = model::message(operations.name);
  useByteOrder(operations, reversed);
  resetRecorder();
  const model::RecordImage record(message, value);
  const std::vector<uint8_t> recordBefore = record.bytes();
  // Of its exact size, so that a sanitizer sees the first byte beyond it.
  std::vector<uint8_t> buffer(room, untouched);
  buffer.shrink_to_fit();
  uint32_t length = room;
  const uint32_t result = operations.pack(record.data(), buffer.data(), &length);

  const model::PackResult expected = model::pack(message, &value, false, room, false, reversed);
  model::WrittenBytes written = expected.bytes;
  written.resize(room, std::nullopt);
  std::string difference = compareNumbers("the result", result, expected.result) +
                           compareNumbers("the length", length, expected.length.value_or(room)) +
                           compareTraces("it", takeTrace(), expected.trace) +
                           compareBytes("the buffer", buffer, written, untouched);
  if (record.bytes() != recordBefore) {
    difference += "the record was changed\n";
  }
  return withContext(difference, operations, "pack", reversed, recordBefore);
}

std::string compareSend(const Operations& operations, model::Operation operation,
                        const std::vector<model::Value>& values, uint64_t extra, bool reversed,
                        bool allocationFails, uint32_t middlewareResult) {
  constexpr uint32_t destination = 0x01020304;
  const model::Message& message = model::message(operations.name);
  const auto count = static_cast<uint32_t>(values.size());
  useByteOrder(operations, reversed);
  resetRecorder();
  recorder().everyAllocationFails = allocationFails;
  recorder().middlewareResult = middlewareResult;
  const model::RecordImage records(message, values);

  uint32_t result = 0;
  const char* name = "";
  switch (operation) {
    case model::Operation::Single:
      name = "sendsingle";
      result = operations.sendSingle(destination, records.data(), extra);
      break;
    case model::Operation::Batch:
      name = "sendbatch";
      result = operations.sendBatch(destination, records.data(), count, extra);
      break;
    case model::Operation::Msg:
      name = "sendmsg";
      result = operations.sendMsg(destination, records.data(), count);
      break;
    case model::Operation::ToMsg:
      name = "sendtomsg";
      result = operations.sendToMsg(destination, records.data(), count, extra);
      break;
  }

  const model::Sent expected = model::send(message, operation, destination, values, count, extra,
                                           reversed, allocationFails, middlewareResult);
  std::string difference =
      compareNumbers("the result", result, expected.result) +
      compareTraces("it", takeTrace(), expected.trace) +
      compareNumbers("the number of tables", recorder().sent.size(), expected.descriptors.size()) +
      compareNumbers("the number of blocks kept", recorder().blocks.size(), size_t{0});
  for (size_t index = 0; difference.empty() && index < expected.descriptors.size(); ++index) {
    const SentTable& sent = recorder().sent[index];
    const model::Descriptor& wanted = expected.descriptors[index];
    difference += compareNumbers("an identifier", sent.id, wanted.id) +
                  compareNumbers("a table's offset", sent.address - recorder().sent[0].address,
                                 wanted.offset - expected.descriptors[0].offset) +
                  compareBytes("a table", sent.bytes, wanted.bytes, 0xC7);
  }
  return withContext(difference, operations, name, reversed, records.bytes());
}

std::vector<uint8_t> packed(const Operations& operations, const model::Value& value,
                            bool reversed) {
  const model::Message& message = model::message(operations.name);
  useByteOrder(operations, reversed);
  const model::RecordImage record(message, value);
  auto length = static_cast<uint32_t>(model::compactSize(message, value));
  std::vector<uint8_t> buffer(length);
  if (operations.pack(record.data(), buffer.data(), &length) != 0) {
    std::abort();
  }
  return buffer;
}

int rounds(int usual) {
  const char* const wish = std::getenv("MESH_TEST_ROUNDS");
  const double factor = wish == nullptr ? 1 : std::strtod(wish, nullptr);
  if (!(factor > 0)) {
    std::fprintf(stderr, "MESH_TEST_ROUNDS is a number above 0, not '%s'\n", wish);
    std::abort();
  }
  return std::max(1, static_cast<int>(usual * factor));
}

}  // namespace harness
