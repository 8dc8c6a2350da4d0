// Numbers where their widths end: in buffers of up to 2^31 - 1 bytes, of which only the pages that
// hold a message are there; in long byte strings; in large batches.

#include <sys/mman.h>

#include "agreement/exhaustive/agreement.hpp"
#include "l2vpn_sync/schema.hpp"
#include "oracle/operations/writer.hpp"
#include "support/bytes.hpp"
#include "support/recorder.hpp"

namespace {

using exhaustive::frameOf;
using exhaustive::numberAt;
using exhaustive::putNumber;
using exhaustive::Sample;
using oracle::Value;

constexpr uint32_t largestLength = 0x7FFFFFFF;

// Zeros without end, for a message to lie in. A page that was written is given back afterwards.
class Expanse {
 public:
  Expanse()
      : map_(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (map_ == MAP_FAILED) {
      std::abort();
    }
  }
  ~Expanse() { munmap(map_, size); }
  Expanse(const Expanse&) = delete;
  Expanse& operator=(const Expanse&) = delete;

  void clear() { madvise(map_, size, MADV_DONTNEED); }
  void put(size_t at, std::span<const uint8_t> bytes) {
    std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t*>(map_) + at);
  }
  [[nodiscard]] std::span<const uint8_t> first(uint32_t length) const {
    return {static_cast<const uint8_t*>(map_), length};
  }

 private:
  static constexpr size_t size = size_t{1} << 32;
  void* map_;
};

class Numbers : public exhaustive::EveryMessage {
 protected:
  // The message as it lies in the expanse, in a buffer of the length.
  bool agree(const Sample& sample, uint32_t length) {
    const std::string difference = harness::compareUnpack(
        *sample.operations, expanse_.first(length),
        {.reversed = sample.reversed, .inPlace = true, .largestBlock = 1 << 16});
    EXPECT_EQ(difference, "") << "from " << sample.name() << " in " << length << " bytes";
    return difference.empty();
  }

  // The bytes at a place of their own, the root word at the buffer's start.
  void putFarAway(const Sample& sample, size_t base) {
    std::vector<uint8_t> root(4);
    putNumber(root, 0, 4, base + numberAt(sample.bytes, 0, 4, sample.reversed), sample.reversed);
    expanse_.clear();
    expanse_.put(0, root);
    expanse_.put(base + 4, std::span(sample.bytes).subspan(4));
  }

  Expanse expanse_;
};

TEST_P(Numbers, AgreeAtTheEdgesOf32Bits) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    expanse_.clear();
    for (const uint32_t length : {0xFFFFU, 0x10000U, largestLength}) {
      for (const size_t at : frameOf(sample).words) {
        for (const uint64_t number :
             {uint64_t{0}, uint64_t{1}, uint64_t{0xFFFF}, uint64_t{0x10000},
              uint64_t{harness::largestVectorCount}, uint64_t{harness::largestVectorCount} + 1,
              uint64_t{0x7FFFFFFF}, uint64_t{0x80000000}, uint64_t{0xFFFFFFFF}, length - at - 8,
              length - at - 5, length - at - 4, length - at - 3, length - at, 0 - at}) {
          std::vector<uint8_t> bytes = sample.bytes;
          putNumber(bytes, at, 4, number, sample.reversed);
          expanse_.put(0, bytes);
          if (!agree(sample, length)) {
            return;
          }
        }
      }
    }
  }
}

TEST_P(Numbers, AgreeAtTheEdgesOf16Bits) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    expanse_.clear();
    for (const uint32_t length : {0xFFFFU, 0x10000U, largestLength}) {
      for (const size_t at : frameOf(sample).halves) {
        for (const uint32_t number : {0U, 1U, 0x7FFFU, 0x8000U, 0xFFFEU, 0xFFFFU}) {
          std::vector<uint8_t> bytes = sample.bytes;
          putNumber(bytes, at, 2, number, sample.reversed);
          expanse_.put(0, bytes);
          if (!agree(sample, length)) {
            return;
          }
        }
      }
    }
  }
}

TEST_P(Numbers, AgreeFarIntoLargeBuffers) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    const auto size = static_cast<uint32_t>(sample.bytes.size());
    for (const uint32_t end : {0x10000U, 0x10001U, 0x40000000U, largestLength}) {
      putFarAway(sample, end - size);
      for (uint32_t cut = 0; cut <= 9; ++cut) {
        if (!agree(sample, end - cut)) {
          return;
        }
      }
    }
  }
}

TEST_P(Numbers, AgreeOnAFarVtable) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    const exhaustive::TablePlace place = frameOf(sample).tables[0];
    const std::span<const uint8_t> vtable =
        std::span(sample.bytes).subspan(place.vtable, place.message->vtableLength);
    for (const size_t at : {size_t{0xFFFF}, size_t{0x10000}, size_t{0x40000000},
                            largestLength - vtable.size(), largestLength - vtable.size() + 1}) {
      std::vector<uint8_t> bytes = sample.bytes;
      putNumber(bytes, place.table, 4, place.table - at, sample.reversed);
      expanse_.clear();
      expanse_.put(0, bytes);
      expanse_.put(at, vtable);
      if (!agree(sample, largestLength)) {
        return;
      }
    }
  }
}

TEST_P(Numbers, OfTheCallerReachTheMiddleware) {
  const std::vector<uint8_t> record(GetParam().schema().size);
  for (const uint32_t destination : {0U, 1U, 0xFFFFU, 0x10000U, 0x7FFFFFFFU, 0x80000000U, ~0U}) {
    for (const uint64_t extra : {uint64_t{0}, uint64_t{1}, uint64_t{0xFFFFFFFF}, uint64_t{1} << 32,
                                 uint64_t{1} << 63, ~uint64_t{0}}) {
      harness::resetRecorder();
      EXPECT_EQ(GetParam().sendToMsg(destination, record.data(), 1, extra), 0U);
      std::string call =
          (extra == 0 ? "MESH_SendMsg destination=" : "MESH_SendToMsg destination=") +
          std::to_string(destination) + " count=1";
      if (extra != 0) {
        call += " extra=" + std::to_string(extra);
      }
      const harness::Trace trace = harness::takeTrace();
      EXPECT_EQ(std::count(trace.begin(), trace.end(), call), 1) << call;
    }
  }
}

EXHAUSTIVE_OVER_MESSAGES(Numbers);

// Every byte string of the value and of its nested records.
void collectStrings(Value& value, std::vector<oracle::FieldValue*>& strings) {
  for (oracle::FieldValue& field : value.fields) {
    if (field.kind == oracle::Kind::Bytes) {
      strings.push_back(&field);
    }
    for (Value& item : field.items) {
      collectStrings(item, strings);
    }
  }
}

class LongStrings : public testing::TestWithParam<const char*> {};

TEST_P(LongStrings, WrapTheTableLength) {
  const harness::Operations& operations = harness::operationsOf(GetParam());
  const oracle::Description& message = oracle::descriptionOf(GetParam());
  Value value = exhaustive::fullValue(message);
  for (oracle::FieldValue& field : value.fields) {
    if (field.kind == oracle::Kind::Vector) {
      field = oracle::zeroField(message.fields.back());
    }
  }
  std::vector<oracle::FieldValue*> strings;
  collectStrings(value, strings);
  const auto rest = static_cast<uint32_t>(oracle::compactSize(message, value)) - 5;
  for (oracle::FieldValue* const string : strings) {
    for (const uint32_t length : {0xFFFFU, 0x10000U, 0x10001U, 0xFFFFU - rest, 0x10000U - rest,
                                  0x10001U - rest, 0x20000U, 0x123456U}) {
      oracle::setBytes(*string, std::vector<uint8_t>(length, 0x5A));
      const auto size = static_cast<uint32_t>(oracle::compactSize(message, value));
      for (const bool reversed : {false, true}) {
        for (const uint32_t room : {size - 1, size, size + 1}) {
          ASSERT_EQ(harness::comparePack(operations, value, room, reversed), "");
        }
        std::vector<uint8_t> bytes = harness::packed(operations, value, reversed);
        ASSERT_EQ(bytes.size(), size);
        const size_t vtable = 4;
        for (const uint32_t tableLength : {0U, 1U, 4U, 0x7FFFU, 0x8000U, 0xFFFFU}) {
          ASSERT_EQ(harness::compareUnpack(operations, bytes, reversed), "");
          putNumber(bytes, vtable + 2, 2, tableLength, reversed);
        }
      }
    }
    oracle::setBytes(*string, {1, 2, 3, 4, 5});
  }
}

INSTANTIATE_TEST_SUITE_P(ByteStrings, LongStrings,
                         testing::Values("dbginfo_key_l2vpn", "dbginfo_para_l2vpn",
                                         "l2vpn_cfg_query_comm_param", "l2vpn_cfg_query_comm_rec",
                                         "dbginfo_cmd_key_l2vpn", "dbginfo_endata_l2vpn",
                                         "l2vpn_cfg_query_dfx_key", "l2vpn_cfg_query_dfx_rec"),
                         [](const auto& test) { return std::string(test.param); });

TEST(LargeBatch, SendsAllOfItsRecords) {
  // new[], as the sanitizer watches its ends.
  constexpr size_t most = 0x10001;
  const auto records = std::make_unique<l2vpn_sync_stp[]>(most);
  for (size_t index = 0; index < most; ++index) {
    records[index].f0 = static_cast<uint32_t>(index);
  }
  const harness::Operations& operations = harness::operationsOf("l2vpn_sync_stp");
  for (const uint32_t count : {0xFFFFU, 0x10000U, 0x10001U}) {
    harness::resetRecorder();
    EXPECT_EQ(operations.sendBatch(1, records.get(), count, 0), 0U);
    const auto& sent = harness::recorder().sent;
    ASSERT_EQ(sent.size(), count);
    for (size_t index = 0; index < count; ++index) {
      ASSERT_EQ(numberAt(sent[index].bytes, 8, 4, false), index);
    }
  }
  EXPECT_TRUE(harness::recorder().blocks.empty());
}

}  // namespace
