// Every subset of zero fields, into buffers that end at an inaccessible page; every alignment of
// record and buffer.

#include <random>

#include "agreement/exhaustive/agreement.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/record_image.hpp"
#include "support/block.hpp"
#include "support/recorder.hpp"

namespace {

using exhaustive::agrees;
using exhaustive::Sample;
using harness::GuardedBuffer;
using oracle::FieldValue;
using oracle::Value;

struct Scalar {
  FieldValue* field;
  uint32_t width;
};

class Packing : public exhaustive::EveryMessage {
 protected:
  const oracle::Description& message() const { return oracle::descriptionOf(GetParam().name); }

  static void collect(const oracle::Description& message, Value& value,
                      std::vector<Scalar>& scalars) {
    for (size_t slot = 0; slot < message.fields.size(); ++slot) {
      const oracle::Field& field = message.fields[slot];
      if (oracle::isScalar(field.kind)) {
        scalars.push_back({&value[slot], field.size});
      }
      for (Value& item : value[slot].items) {
        collect(*field.nested, item, scalars);
      }
    }
  }

  // Of every width: the least, the largest, and those that fewer bytes would lose.
  uint64_t nonzero(uint32_t width) {
    const uint64_t top = uint64_t{1} << (8 * width - 1);
    const uint64_t numbers[] = {1, top, top + (top - 1), uint64_t{1} << (4 * width),
                                (random_() | 1) & (top + (top - 1))};
    return numbers[random_() % std::size(numbers)];
  }

  // A vector has one item: they are large.
  Value smallValue() const {
    Value value = exhaustive::fullValue(message());
    for (FieldValue& field : value.fields) {
      if (field.kind == oracle::Kind::Vector) {
        oracle::setItems(field, {field.items.at(0)});
      }
    }
    return value;
  }

  // With the scalars of the subset zero: into exactly its size, into more, and into the room that
  // the scalars would take if none were zero.
  bool packsAlike(Value& value, const std::vector<Scalar>& scalars, uint64_t zeros, bool reversed) {
    for (size_t index = 0; index < scalars.size(); ++index) {
      scalars[index].field->scalar = (zeros >> index & 1) != 0 ? 0 : nonzero(scalars[index].width);
    }
    const auto size = static_cast<uint32_t>(oracle::compactSize(message(), value));
    const GuardedBuffer::Edge edge =
        random_() % 4 == 0 ? GuardedBuffer::Edge::Start : GuardedBuffer::Edge::End;
    const uint32_t more = 1 + static_cast<uint32_t>(random_() % 40);
    const std::string exact = harness::comparePack(
        GetParam(), value, {.room = size, .reversed = reversed, .guard = edge});
    const std::string roomy =
        harness::comparePack(GetParam(), value, {.room = size + more, .reversed = reversed});
    const std::string full = harness::comparePack(
        GetParam(), value, {.room = fullSize_, .reversed = reversed, .guard = edge});
    EXPECT_EQ(exact, "");
    EXPECT_EQ(roomy, "");
    EXPECT_EQ(full, "");
    return exact.empty() && roomy.empty() && full.empty();
  }

  uint64_t random() { return random_(); }

 private:
  const uint32_t fullSize_ = static_cast<uint32_t>(oracle::compactSize(message(), smallValue()));
  std::mt19937_64 random_{85};
};

TEST_P(Packing, TakesEverySubsetOfZeroScalars) {
  constexpr size_t mostTriedTogether = 12;
  constexpr int samplesAbove = 512;
  Value value = smallValue();
  std::vector<Scalar> scalars;
  collect(message(), value, scalars);
  const size_t count = scalars.size();
  if (count <= mostTriedTogether) {
    for (uint64_t zeros = 0; zeros < uint64_t{1} << count; ++zeros) {
      if (!packsAlike(value, scalars, zeros, false)) {
        return;
      }
    }
  }
  for (size_t index = 0; index < count; ++index) {
    const uint64_t one = uint64_t{1} << index;
    if (!packsAlike(value, scalars, one, true) || !packsAlike(value, scalars, ~one, true) ||
        !packsAlike(value, scalars, one, false) || !packsAlike(value, scalars, ~one, false)) {
      return;
    }
  }
  for (int sample = 0; sample < harness::rounds(samplesAbove); ++sample) {
    if (!packsAlike(value, scalars, random(), sample % 2 == 0)) {
      return;
    }
  }
}

TEST_P(Packing, TakesEveryAlignmentOfRecordAndBuffer) {
  const Value value = smallValue();
  const auto size = static_cast<uint32_t>(oracle::compactSize(message(), value));
  for (size_t record = 0; record < 8; ++record) {
    for (size_t buffer = 0; buffer < 8; ++buffer) {
      ASSERT_EQ(harness::comparePack(GetParam(), value,
                                     {.room = size, .bufferShift = buffer, .recordShift = record}),
                "");
    }
  }
}

TEST_P(Packing, SendsARecordOfAnyAlignment) {
  const Value value = smallValue();
  const oracle::RecordImage image(message(), value);
  std::vector<uint8_t> first;
  for (size_t shift = 0; shift < 8; ++shift) {
    harness::Block record(image.size(), 0, shift);
    record.hold(image.bytes());
    harness::useByteOrder(GetParam(), false);
    harness::resetRecorder();
    ASSERT_EQ(GetParam().sendSingle(1, record.data(), harness::unused, 0), 0U);
    ASSERT_EQ(harness::recorder().sent.size(), 1U);
    const std::vector<uint8_t>& sent = harness::recorder().sent[0].bytes;
    if (shift == 0) {
      first = sent;
    }
    EXPECT_EQ(sent, first) << "shifted by " << shift;
  }
}

TEST_P(Packing, RoundTripsAtEveryAlignment) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (size_t buffer = 0; buffer < 8; ++buffer) {
      std::vector<uint8_t> shifted(buffer + sample.bytes.size());
      std::copy(sample.bytes.begin(), sample.bytes.end(),
                shifted.begin() + static_cast<std::ptrdiff_t>(buffer));
      for (size_t record = 0; record < 8; ++record) {
        ASSERT_EQ(harness::compareUnpack(*sample.operations, std::span(shifted).subspan(buffer),
                                         {.reversed = sample.reversed, .recordShift = record}),
                  "");
      }
    }
  }
}

EXHAUSTIVE_OVER_MESSAGES(Packing);

}  // namespace
