// Good tables in places where the writers never put them.

#include "agreement/exhaustive/agreement.hpp"

namespace {

using exhaustive::agrees;
using exhaustive::Frame;
using exhaustive::frameOf;
using exhaustive::putNumber;
using exhaustive::Sample;
using exhaustive::TablePlace;

class Places : public exhaustive::EveryMessage {
 protected:
  // Every place of a buffer of many KiB is tried near its frame, between now and then one.
  static bool isTried(const Sample& sample, size_t at) {
    return !sample.isLarge() || at < 600 || sample.bytes.size() - at < 100 || at % 97 == 0;
  }
};

TEST_P(Places, AgreeForEveryRoot) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (size_t at = 0; at < sample.bytes.size() + 4; ++at) {
      std::vector<uint8_t> bytes = sample.bytes;
      putNumber(bytes, 0, 4, at, sample.reversed);
      if (isTried(sample, at) && !agrees(sample, bytes)) {
        return;
      }
    }
  }
}

TEST_P(Places, AgreeForEveryVtableOffset) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (const TablePlace& place : frameOf(sample).tables) {
      for (size_t at = 0; at < sample.bytes.size() + 4; ++at) {
        std::vector<uint8_t> bytes = sample.bytes;
        putNumber(bytes, place.table, 4, place.table - at, sample.reversed);
        if (isTried(sample, at) && !agrees(sample, bytes)) {
          return;
        }
      }
    }
  }
}

// The vtable itself moves: over fields, over padding, behind everything.
TEST_P(Places, AgreeForEveryPlaceOfAVtable) {
  for (const Sample& sample : exhaustive::fixedSamplesOf(GetParam())) {
    for (const TablePlace& place : frameOf(sample).tables) {
      const auto from = sample.bytes.begin() + static_cast<std::ptrdiff_t>(place.vtable);
      const std::vector<uint8_t> vtable(from, from + place.message->vtableLength);
      for (size_t at = 4; at < sample.bytes.size() + 9; ++at) {
        std::vector<uint8_t> bytes = sample.bytes;
        bytes.resize(std::max(bytes.size(), at + vtable.size()));
        std::copy(vtable.begin(), vtable.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
        putNumber(bytes, place.table, 4, place.table - at, sample.reversed);
        if (isTried(sample, at) && !agrees(sample, bytes)) {
          return;
        }
      }
    }
  }
}

TEST_P(Places, IgnoreOtherBytesAround) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (size_t more = 0; more <= 9; ++more) {
      std::vector<uint8_t> before(4 + more, 0xEE);
      putNumber(before, 0, 4, exhaustive::numberAt(sample.bytes, 0, 4, sample.reversed) + more,
                sample.reversed);
      before.insert(before.end(), sample.bytes.begin() + 4, sample.bytes.end());
      std::vector<uint8_t> behind = sample.bytes;
      behind.insert(behind.end(), more, 0xEE);
      if (!agrees(sample, before) || !agrees(sample, behind)) {
        return;
      }
    }
  }
}

TEST_P(Places, AreReadInTheModulesByteOrder) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    Sample inTheOther = sample;
    inTheOther.reversed = !sample.reversed;
    if (!agrees(inTheOther, sample.bytes)) {
      return;
    }
  }
}

TEST_P(Places, AgreeForEveryVtableLength) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    std::vector<uint8_t> bytes = sample.bytes;
    // Room for slots that no schema has yet.
    bytes.insert(bytes.end(), 16, 0x11);
    for (const TablePlace& place : frameOf(sample).tables) {
      for (uint32_t length = 0; length <= place.message->vtableLength + 12; ++length) {
        std::vector<uint8_t> other = bytes;
        putNumber(other, place.vtable, 2, length, sample.reversed);
        if (!agrees(sample, other)) {
          return;
        }
        // The same where the buffer ends with the vtable, or one byte before.
        for (const size_t end : {place.vtable + length, place.vtable + length - 1}) {
          if (end <= other.size() && !agrees(sample, {other.data(), end})) {
            return;
          }
        }
      }
    }
  }
}

EXHAUSTIVE_OVER_MESSAGES(Places);

}  // namespace
