#include "support/comparison.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <sstream>

#include "host/binding.hpp"
#include "oracle/operations/reader.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/record_image.hpp"
#include "support/block.hpp"
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
                         const oracle::WrittenBytes& expected, uint8_t left) {
  std::vector<uint8_t> filled;
  for (const std::optional<uint8_t>& byte : expected) {
    filled.push_back(byte.value_or(left));
  }
  if (engine == filled) {
    return "";
  }
  return std::string(what) + " is\n" + oracle::print(engine) + "\n  and should be\n" +
         oracle::print(filled) + "\n";
}

std::string withContext(const std::string& difference, const Operations& operations,
                        const char* call, bool reversed, std::span<const uint8_t> bytes) {
  if (difference.empty()) {
    return "";
  }
  const std::span<const uint8_t> first = bytes.first(std::min(bytes.size(), size_t{1} << 16));
  return std::string(operations.name) + "__" + call + (reversed ? ", byte-reversed" : "") + ": " +
         difference + "  given\n" + oracle::print({first.begin(), first.end()}) + "\n";
}

// A record's bytes, its padding included, without the pointers in it.
std::vector<uint8_t> withoutPointers(const oracle::Description& message,
                                     std::vector<uint8_t> record, size_t offset = 0) {
  for (const oracle::Field& field : message.fields) {
    if (field.kind == oracle::Kind::Table) {
      record = withoutPointers(*field.nested, std::move(record), offset + field.offset);
    } else if (field.kind == oracle::Kind::Bytes || field.kind == oracle::Kind::Vector) {
      std::fill_n(record.begin() + static_cast<std::ptrdiff_t>(offset + field.offset),
                  sizeof(void*), uint8_t{0});
    }
  }
  return record;
}

std::string compareRelease(const Operations& operations, const oracle::Description& message,
                           const oracle::Value& decoded, void* record) {
  std::string difference;
  oracle::Value left = decoded;
  for (const char* call : {"_free__unpacked", "the second _free__unpacked"}) {
    const std::vector<std::string> expected = oracle::release(message, left);
    operations.freeUnpacked(record);
    difference += compareTraces(call, takeTrace(), expected);
  }
  return difference;
}

const char* nameOf(oracle::Operation operation) {
  switch (operation) {
    case oracle::Operation::Single:
      return "sendsingle";
    case oracle::Operation::Batch:
      return "sendbatch";
    case oracle::Operation::Msg:
      return "sendmsg";
    case oracle::Operation::ToMsg:
      return "sendtomsg";
  }
  std::abort();
}

uint32_t callSend(const Operations& operations, uint32_t destination, const void* records,
                  const Sending& how) {
  switch (how.operation) {
    case oracle::Operation::Single:
      return operations.sendSingle(destination, records, unused, how.extra);
    case oracle::Operation::Batch:
      return operations.sendBatch(destination, records, how.count, how.extra);
    case oracle::Operation::Msg:
      return operations.sendMsg(destination, records, how.count);
    case oracle::Operation::ToMsg:
      return operations.sendToMsg(destination, records, how.count, how.extra);
  }
  std::abort();
}

std::string compareSendOf(const Operations& operations, const void* records,
                          const std::optional<std::vector<oracle::Value>>& values,
                          const Sending& how) {
  constexpr uint32_t destination = 0x01020304;
  useByteOrder(operations, how.reversed);
  resetRecorder();
  recorder().everyAllocationFails = how.allocationFails;
  recorder().middlewareResult = how.middlewareResult;
  const uint32_t result = callSend(operations, destination, records, how);

  const oracle::Sent expected =
      oracle::send(oracle::descriptionOf(operations.name), how.operation, destination, values,
                   how.count, how.extra, how.reversed, how.allocationFails, how.middlewareResult);
  std::string difference =
      compareNumbers("the result", result, expected.result) +
      compareTraces("it", takeTrace(), expected.trace) +
      compareNumbers("the number of tables", recorder().sent.size(), expected.descriptors.size()) +
      compareNumbers("the number of blocks kept", recorder().blocks.size(), size_t{0});
  for (size_t index = 0; difference.empty() && index < expected.descriptors.size(); ++index) {
    const SentTable& sent = recorder().sent[index];
    const oracle::Descriptor& wanted = expected.descriptors[index];
    difference += compareNumbers("an identifier", sent.id, wanted.id) +
                  compareNumbers("a table's offset", sent.address - recorder().sent[0].address,
                                 wanted.offset - expected.descriptors[0].offset) +
                  compareBytes("a table", sent.bytes, wanted.bytes, 0xC7);
  }
  return difference;
}

}  // namespace

void useByteOrder(const Operations& operations, bool reversed) {
  const Modules modules = modulesOf(operations);
  for (mesh::host::Module* const module : {modules.receive, modules.send}) {
    mesh::host::bindCodec(*module);
    module->swapBytes.store(reversed ? 1 : 0);
  }
}

std::string compareUnpack(const Operations& operations, std::span<const uint8_t> bytes,
                          bool reversed, int failingAllocation, bool guarded) {
  Unpacking how{.reversed = reversed, .failingAllocation = failingAllocation};
  if (guarded) {
    how.guard = GuardedBuffer::Edge::End;
  }
  return compareUnpack(operations, bytes, how);
}

std::string compareUnpack(const Operations& operations, std::span<const uint8_t> bytes,
                          const Unpacking& how) {
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  const auto length = static_cast<uint32_t>(bytes.size());
  useByteOrder(operations, how.reversed);
  resetRecorder();
  recorder().failingAllocation = how.failingAllocation;
  recorder().largestBlock = how.largestBlock;

  Block record(message.recordSize, untouched, how.recordShift, how.guard);
  const std::vector<uint8_t> before = record.bytes();
  // A copy of the same alignment.
  Block block(how.inPlace ? 0 : length, untouched, reinterpret_cast<uintptr_t>(bytes.data()) % 8,
              how.guard);
  if (!how.inPlace) {
    block.hold(bytes);
  }
  const uint8_t* const data = how.inPlace ? bytes.data() : block.data();
  const uint32_t returned = operations.unpack(data, length, record.data());

  const oracle::UnpackResult expected =
      oracle::unpack(message, data, length, false, how.reversed, recorder().lastFailure);
  std::string difference = compareNumbers("the result", returned, expected.returned) +
                           compareTraces("it", takeTrace(), expected.trace);
  if (!expected.recordTouched) {
    if (record.bytes() != before) {
      difference += "the record was touched\n";
    }
  } else if (difference.empty()) {
    // Only a record whose calls were as expected has pointers that may be followed.
    const oracle::Value decoded = oracle::load(message, record.data());
    if (!(decoded == expected.record)) {
      difference += "the record differs at " + oracle::difference(decoded, expected.record) + "\n";
    } else if (withoutPointers(message, record.bytes()) !=
               withoutPointers(message, oracle::RecordImage(message, expected.record).bytes())) {
      difference += "the record's padding is not zero\n";
    }
    difference += compareRelease(operations, message, expected.record, record.data());
    difference += compareNumbers("the number of blocks kept", recorder().blocks.size(), size_t{0});
  }
  return withContext(difference, operations, "unpack", how.reversed, bytes);
}

std::string comparePack(const Operations& operations, const oracle::Value& value, uint32_t room,
                        bool reversed) {
  return comparePack(operations, value, {.room = room, .reversed = reversed});
}

std::string comparePack(const Operations& operations, const oracle::Value& value,
                        const Packing& how) {
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  useByteOrder(operations, how.reversed);
  resetRecorder();
  const oracle::RecordImage image(message, value);
  const std::vector<uint8_t> recordBefore = image.bytes();
  Block record(recordBefore.size(), untouched, how.recordShift, how.guard);
  record.hold(recordBefore);

  const uint32_t size = how.bufferIsNull ? 0 : std::min(how.block.value_or(how.room), how.room);
  Block block(size, untouched, how.bufferShift, how.guard);
  uint32_t length = how.room;
  const uint32_t result = operations.pack(how.recordIsNull ? nullptr : record.data(),
                                          how.bufferIsNull ? nullptr : block.data(),
                                          how.lengthIsNull ? nullptr : &length);

  const oracle::PackResult expected =
      oracle::pack(message, how.recordIsNull ? nullptr : &value, how.bufferIsNull, how.room,
                   how.lengthIsNull, how.reversed);
  oracle::WrittenBytes written = expected.bytes;
  written.resize(size, std::nullopt);
  std::string difference =
      compareNumbers("the result", result, expected.result) +
      compareNumbers("the length", length, expected.length.value_or(how.room)) +
      compareTraces("it", takeTrace(), expected.trace) +
      compareBytes("the buffer", block.bytes(), written, untouched);
  if (record.bytes() != recordBefore) {
    difference += "the record was changed\n";
  }
  return withContext(difference, operations, "pack", how.reversed, recordBefore);
}

std::string compareSend(const Operations& operations, oracle::Operation operation,
                        const std::vector<oracle::Value>& values, uint64_t extra, bool reversed,
                        bool allocationFails, uint32_t middlewareResult) {
  const oracle::RecordImage records(oracle::descriptionOf(operations.name), values);
  const Sending how{.operation = operation,
                    .count = static_cast<uint32_t>(values.size()),
                    .extra = extra,
                    .reversed = reversed,
                    .allocationFails = allocationFails,
                    .middlewareResult = middlewareResult};
  return withContext(compareSendOf(operations, records.data(), values, how), operations,
                     nameOf(operation), reversed, records.bytes());
}

std::string compareNullSend(const Operations& operations, const Sending& how) {
  return withContext(compareSendOf(operations, nullptr, std::nullopt, how), operations,
                     nameOf(how.operation), how.reversed, {});
}

std::vector<uint8_t> packed(const Operations& operations, const oracle::Value& value,
                            bool reversed) {
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  useByteOrder(operations, reversed);
  const oracle::RecordImage record(message, value);
  auto length = static_cast<uint32_t>(oracle::compactSize(message, value));
  const Block buffer(length, untouched);
  if (operations.pack(record.data(), buffer.data(), &length) != 0) {
    std::abort();
  }
  return buffer.bytes();
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
