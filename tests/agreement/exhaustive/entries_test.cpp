// Slot entries that lead to the wrong place, and what stays of a record when one fails.

#include <set>

#include "agreement/exhaustive/agreement.hpp"
#include "oracle/operations/reader.hpp"
#include "oracle/values/record_image.hpp"
#include "support/block.hpp"

namespace {

using exhaustive::agrees;
using exhaustive::frameOf;
using exhaustive::numberAt;
using exhaustive::putNumber;
using exhaustive::Sample;
using exhaustive::TablePlace;
using oracle::Value;

class Entries : public exhaustive::EveryMessage {
 protected:
  static size_t entryAt(const TablePlace& place, size_t slot) {
    return place.vtable + 4 + 2 * slot;
  }
  // The slots that the sample's vtable has.
  static size_t slotsOf(const Sample& sample, const TablePlace& place) {
    return (numberAt(sample.bytes, place.vtable, 2, sample.reversed) - 4) / 2;
  }

  static std::set<uint16_t> tellingEntries(const Sample& sample, const TablePlace& place) {
    std::set<uint16_t> entries{0x7FFF, 0x8000, 0xFFFF};
    const auto around = [&entries](size_t entry, size_t before, size_t behind) {
      for (size_t value = entry - before; value != entry + behind + 1; ++value) {
        entries.insert(static_cast<uint16_t>(value));
      }
    };
    around(4, 4, 4);
    // Into the vtable, and to the buffer's last bytes.
    around(place.vtable - place.table, 1, 5);
    around(place.vtable + place.message->vtableLength - place.table, 9, 1);
    around(sample.bytes.size() - place.table, 9, 1);
    for (size_t slot = 0; slot < slotsOf(sample, place); ++slot) {
      around(numberAt(sample.bytes, entryAt(place, slot), 2, sample.reversed), 1, 1);
    }
    return entries;
  }
};

TEST_P(Entries, AgreeWhereverTheyLead) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (const TablePlace& place : frameOf(sample).tables) {
      const std::set<uint16_t> entries = tellingEntries(sample, place);
      for (size_t slot = 0; slot < slotsOf(sample, place); ++slot) {
        for (const uint16_t entry : entries) {
          std::vector<uint8_t> bytes = sample.bytes;
          putNumber(bytes, entryAt(place, slot), 2, entry, sample.reversed);
          if (!agrees(sample, bytes)) {
            return;
          }
        }
      }
    }
  }
}

TEST_P(Entries, AgreeInAnyOrder) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (const TablePlace& place : frameOf(sample).tables) {
      const size_t slots = slotsOf(sample, place);
      for (size_t one = 0; one < slots; ++one) {
        for (size_t other = 0; other < one; ++other) {
          std::vector<uint8_t> bytes = sample.bytes;
          std::swap_ranges(bytes.begin() + static_cast<std::ptrdiff_t>(entryAt(place, one)),
                           bytes.begin() + static_cast<std::ptrdiff_t>(entryAt(place, one) + 2),
                           bytes.begin() + static_cast<std::ptrdiff_t>(entryAt(place, other)));
          if (!agrees(sample, bytes)) {
            return;
          }
        }
      }
    }
  }
}

TEST_P(Entries, AgreeWhenAllLeadToOnePlace) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    const TablePlace place = frameOf(sample).tables[0];
    for (const uint16_t entry : tellingEntries(sample, place)) {
      std::vector<uint8_t> bytes = sample.bytes;
      for (size_t slot = 0; slot < slotsOf(sample, place); ++slot) {
        putNumber(bytes, entryAt(place, slot), 2, entry, sample.reversed);
      }
      if (!agrees(sample, bytes)) {
        return;
      }
    }
  }
}

Value received(const Sample& sample, const std::vector<uint8_t>& bytes) {
  harness::useByteOrder(*sample.operations, sample.reversed);
  oracle::RecordImage record(sample.message(), uint8_t{0xA5});
  harness::Block block(bytes.size(), 0);
  block.hold(bytes);
  sample.operations->unpack(block.data(), static_cast<uint32_t>(bytes.size()), record.data());
  const Value value = oracle::load(sample.message(), record.data());
  sample.operations->freeUnpacked(record.data());
  return value;
}

TEST_P(Entries, KeepEarlierFieldsWhenOneFails) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    const TablePlace place = frameOf(sample).tables[0];
    const Value whole = received(sample, sample.bytes);
    const Value zero = oracle::zeroValue(sample.message());
    for (size_t slot = 0; slot < whole.fields.size(); ++slot) {
      EXPECT_FALSE(whole[slot] == zero[slot]) << "nothing to lose at slot " << slot;
      std::vector<uint8_t> bytes = sample.bytes;
      putNumber(bytes, entryAt(place, slot), 2, 0xFFFF, sample.reversed);
      Value expected = whole;
      std::copy(zero.fields.begin() + static_cast<std::ptrdiff_t>(slot), zero.fields.end(),
                expected.fields.begin() + static_cast<std::ptrdiff_t>(slot));
      oracle::release(sample.message(), expected);
      EXPECT_EQ(oracle::difference(received(sample, bytes), expected), "")
          << sample.name() << ", slot " << slot;
    }
  }
}

EXHAUSTIVE_OVER_MESSAGES(Entries);

}  // namespace
