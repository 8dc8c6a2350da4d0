// Shared by the tests of the message families: single calls of an operation on a C record, and
// expectations for every message of a kind. Each test supplies its own numbers.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "delivered/golden/values.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/record_image.hpp"
#include "support/bytes.hpp"
#include "support/operations.hpp"
#include "support/recorder.hpp"

namespace harness {

inline uint8_t abc[] = {'a', 'b', 'c'};
inline uint8_t defgh[] = {'d', 'e', 'f', 'g', 'h'};

template <typename Record>
const Operations& of() {
  return operationsOf(mesh::wire::schemaOf<Record>.name);
}

template <typename Record>
std::string nameOf() {
  return mesh::wire::schemaOf<Record>.name;
}

// No field is zero, no two fields are equal. Not for records with pointers.
template <typename Record>
Record full() {
  const oracle::Description& message = oracle::descriptionOf(nameOf<Record>());
  const oracle::RecordImage image(message, golden::fullValue(message));
  Record record;
  std::memcpy(&record, image.data(), sizeof record);
  return record;
}

// The record with zeros from the offset on: a reader that stops there leaves this.
template <typename Record>
Record upTo(size_t offset, Record record) {
  auto* const bytes = reinterpret_cast<uint8_t*>(&record);
  std::memset(bytes + offset, 0, sizeof record - offset);
  return record;
}

// One call of a message's __pack into a buffer of marks.
template <typename Record>
struct Packed {
  Packed(const Record& record, uint32_t room) : buffer(marks(room)), length(room) {
    resetRecorder();
    result = of<Record>().pack(&record, buffer.data(), &length);
    trace = takeTrace();
  }

  Buffer buffer;
  uint32_t length;
  uint32_t result;
  Trace trace;
};

// The record's compact message.
template <typename Record>
Buffer compact(const Record& record) {
  const Packed<Record> packed(record, 70000);
  EXPECT_EQ(packed.result, 0U);
  EXPECT_TRUE(packed.trace.empty());
  return firstBytes(packed.buffer, packed.length);
}

// The outcome of a __pack call without a buffer: the record's size, or nothing.
struct Asked {
  uint32_t result;
  uint32_t length;
  Trace trace;
};

template <typename Record>
Asked askForSize(const Record& record, uint32_t room) {
  resetRecorder();
  uint32_t length = room;
  const uint32_t result = of<Record>().pack(&record, nullptr, &length);
  return {result, length, takeTrace()};
}

// The table that one __sendsingle passes to the middleware.
template <typename Record>
Buffer sent(const Record& record) {
  resetRecorder();
  EXPECT_EQ(of<Record>().sendSingle(7, &record, unused, 0), 0U);
  EXPECT_EQ(recorder().sent.size(), 1U);
  return recorder().sent.at(0).bytes;
}

// Compares field by field, with strings. Ignores padding.
template <typename Record>
void expectSame(const Record& record, const Record& expected) {
  const oracle::Description& message = oracle::descriptionOf(nameOf<Record>());
  EXPECT_EQ(oracle::difference(oracle::load(message, &record), oracle::load(message, &expected)),
            "");
}

template <typename Record>
void expectRead(const Buffer& bytes, const Record& expected) {
  const Unpacked<Record> unpacked(bytes);
  expectSame(unpacked.record, expected);
  EXPECT_EQ(unpacked.trace, Trace{});
}

// Both arrangements decode to the record.
template <typename Record>
void expectRoundTrip(const Record& record) {
  SCOPED_TRACE(nameOf<Record>());
  expectRead(compact(record), record);
  expectRead(sent(record), record);
}

// __pack: no record, too little room, no buffer, enough room.
template <typename Record>
void expectPackLimits(const Record& record) {
  SCOPED_TRACE(nameOf<Record>());
  const oracle::Description& message = oracle::descriptionOf(nameOf<Record>());
  const auto size =
      static_cast<uint32_t>(oracle::compactSize(message, oracle::load(message, &record)));
  uint32_t length = 1000;
  Buffer buffer = marks(1000);
  resetRecorder();
  EXPECT_EQ(of<Record>().pack(nullptr, buffer.data(), &length), failure);
  EXPECT_EQ(length, 1000U);
  EXPECT_EQ(buffer, marks(1000));
  EXPECT_EQ(takeTrace(), Trace{});

  const Packed<Record> tooSmall(record, size - 1);
  EXPECT_EQ(tooSmall.result, failure);
  EXPECT_EQ(tooSmall.length, size - 1);
  EXPECT_EQ(tooSmall.buffer, marks(size - 1));
  EXPECT_EQ(tooSmall.trace, Trace{});

  const Packed<Record> exact(record, size);
  EXPECT_EQ(exact.result, 0U);
  EXPECT_EQ(exact.length, size);
  EXPECT_EQ(exact.trace, Trace{});

  for (const uint32_t room : {0U, 3U, size - 1}) {
    const Asked refused = askForSize(record, room);
    EXPECT_EQ(refused.result, failure);
    EXPECT_EQ(refused.length, room);
    EXPECT_EQ(refused.trace, Trace{});
  }
  const Asked asked = askForSize(record, size);
  EXPECT_EQ(asked.result, 0U);
  EXPECT_EQ(asked.length, size);
  EXPECT_EQ(asked.trace,
            Trace{reported(nameOf<Record>() + "_pack",
                           "Param invalid(null, " + std::to_string(size) + ", nonNull)")});
}

// __unpack without a buffer, with a short buffer, with a negative length, without a record.
template <typename Record>
void expectUnpackParameters() {
  SCOPED_TRACE(nameOf<Record>());
  const std::string function = nameOf<Record>() + "_unpack";
  const Buffer bytes(64, 0);
  const auto expectRefused = [&](const uint8_t* data, uint32_t length, const std::string& text) {
    const Unpacked<Record> refused(data, length);
    EXPECT_EQ(bytesOf(refused.record), marks(sizeof(Record)));
    EXPECT_EQ(refused.trace, Trace{reported(function, text)});
  };
  expectRefused(nullptr, 64, "Param invalid(null, 64, nonNull)");
  expectRefused(bytes.data(), 3, "Param invalid(nonNull, 3, nonNull)");
  expectRefused(bytes.data(), 0x80000000, "Param invalid(nonNull, -2147483648, nonNull)");
  expectRefused(bytes.data(), 0xFFFFFFFF, "Param invalid(nonNull, -1, nonNull)");
  resetRecorder();
  EXPECT_EQ(of<Record>().unpack(bytes.data(), 64, nullptr), sizeof(Record));
  EXPECT_EQ(takeTrace(), Trace{reported(function, "Param invalid(nonNull, 64, null)")});
}

// The three checks of the head, on a compact message: each logs, and leaves the record as `left`.
template <typename Record>
void expectHeadChecks(const Buffer& good, const std::string& function, const Buffer& left) {
  SCOPED_TRACE(nameOf<Record>());
  const auto length = static_cast<uint32_t>(good.size());
  const uint32_t root = good.at(0);
  const std::string size = std::to_string(length);
  const auto expectRefused = [&](const Buffer& bytes, const std::string& text) {
    const Unpacked<Record> refused(bytes);
    EXPECT_EQ(bytesOf(refused.record), left);
    EXPECT_EQ(refused.trace, Trace{reported(function, text)});
  };
  expectRefused(withU32(good, 0, 2), "Table offset(2) is out of range(4 - " + size + ")");
  expectRefused(withU32(good, 0, length - 3), "Table offset(" + std::to_string(length - 3) +
                                                  ") is out of range(4 - " + size + ")");
  const std::string vtableText = "Vtable offset(" + std::to_string(root) +
                                 ") is out of range(4 - " + std::to_string(length - 4) + ")";
  expectRefused(withU32(good, root, root - 3), vtableText);
  expectRefused(withU32(good, root, root - (length - 3)), vtableText);
  expectRefused(withU16(good, 4, length - 3), "Vtable Len(" + std::to_string(length - 3) +
                                                  ") is out of range(0 - " +
                                                  std::to_string(length - 4) + ")");
}

// The table reader decodes the root: a bad head clears the record.
template <typename Record>
void expectHeadChecksByTableReader(const Record& record) {
  expectHeadChecks<Record>(compact(record), nameOf<Record>() + "_unpack_non_root",
                           Buffer(sizeof(Record), 0));
}

// The message decodes its root itself: a bad head leaves the record as it was.
template <typename Record>
void expectHeadChecksByMessage(const Record& record) {
  expectHeadChecks<Record>(compact(record), nameOf<Record>() + "_unpack", marks(sizeof(Record)));
}

// An array whose length word is not its size ends the reading: the record is read up to `offset`.
// The length word is at `position` of the full compact message.
template <typename Record>
void expectArrayLengthChecked(size_t position, uint32_t size, size_t offset) {
  SCOPED_TRACE(nameOf<Record>());
  const auto record = full<Record>();
  const Buffer good = compact(record);
  ASSERT_EQ(good.at(position), size);
  for (const uint32_t length : {0U, size - 1, size + 1, 0xFFFFFFFFU}) {
    expectRead(withU32(good, position, length), upTo(offset, record));
  }
}

// A vtable of `length` bytes, in the full compact message: the record is read up to `offset`.
template <typename Record>
void expectVtableOf(uint32_t length, size_t offset) {
  SCOPED_TRACE(nameOf<Record>());
  const auto record = full<Record>();
  expectRead(withU16(compact(record), 4, length), upTo(offset, record));
}

// A message that owns no memory is sent with one length, whatever its values: single messages
// without an allocation, batches with one.
template <typename Record>
void expectSentFixed() {
  SCOPED_TRACE(nameOf<Record>());
  const uint32_t id = of<Record>().id();
  const uint32_t length = oracle::fixedLength(oracle::descriptionOf(nameOf<Record>()));
  const Record records[] = {Record{}, full<Record>()};
  for (const Record& record : records) {
    EXPECT_EQ(sent(record).size(), length);
    EXPECT_EQ(recorder().sent.at(0).id, id);
    EXPECT_EQ(takeTrace(), Trace{"MESH_SendMsg destination=7 count=1"});
  }
  resetRecorder();
  EXPECT_EQ(of<Record>().sendBatch(7, records, 2, 0), 0U);
  const std::string caller = " owner=25088 caller=\"" + nameOf<Record>() + "__sendbatch\"";
  EXPECT_EQ(takeTrace(),
            (Trace{"memAlloc size=" + std::to_string(2 * (length + 16)) + caller + " -> #1",
                   "MESH_SendMsg destination=7 count=2", "memFree #1" + caller}));
  ASSERT_EQ(recorder().sent.size(), 2U);
  EXPECT_EQ(recorder().sent[1].address - recorder().sent[0].address, length);
  EXPECT_EQ(recorder().sent[0].bytes.size(), length);
  EXPECT_EQ(recorder().sent[1].id, id);
}

// The release changes nothing and calls nothing.
template <typename Record>
void expectNothingToRelease() {
  SCOPED_TRACE(nameOf<Record>());
  auto record = full<Record>();
  resetRecorder();
  of<Record>().freeUnpacked(&record);
  of<Record>().freeUnpacked(nullptr);
  EXPECT_EQ(bytesOf(record), bytesOf(full<Record>()));
  EXPECT_EQ(takeTrace(), Trace{});
}

}  // namespace harness
