// Truncated messages, and the ends of buffers.

#include "agreement/exhaustive/agreement.hpp"

namespace {

using exhaustive::agrees;
using exhaustive::Arrangement;
using exhaustive::Sample;
using harness::GuardedBuffer;

class Prefixes : public exhaustive::EveryMessage {
 protected:
  // A large message: every length in one form; in the others those near the frame, and every 61st.
  static bool isTried(const Sample& sample, size_t length) {
    constexpr size_t nearby = 300;
    return !sample.isLarge() || (sample.arrangement == Arrangement::Fixed && !sample.reversed) ||
           length < nearby || sample.bytes.size() - length < nearby || length % 61 == 0;
  }
};

TEST_P(Prefixes, ReadNothingPastTheBuffer) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (size_t length = 0; length <= sample.bytes.size(); ++length) {
      const std::span prefix(sample.bytes.data(), length);
      if (isTried(sample, length) && !agrees(sample, prefix, GuardedBuffer::Edge::End)) {
        return;
      }
    }
  }
}

TEST_P(Prefixes, ReadNothingBeforeTheBuffer) {
  for (const Sample& sample : exhaustive::samplesOf(GetParam())) {
    for (size_t cut = 0; cut < 16; ++cut) {
      const std::span prefix(sample.bytes.data(), sample.bytes.size() - cut);
      if (!agrees(sample, prefix, GuardedBuffer::Edge::Start)) {
        return;
      }
    }
    // A root, and a vtable before the buffer.
    for (uint32_t back = 0; back < 16; ++back) {
      std::vector<uint8_t> bytes = sample.bytes;
      const size_t table = exhaustive::frameOf(sample).tables[0].table;
      exhaustive::putNumber(bytes, table, 4, table + back, sample.reversed);
      if (!agrees(sample, bytes, GuardedBuffer::Edge::Start)) {
        return;
      }
    }
  }
}

// The last field is cut, and not the vtable, when the vtable stands before its table.
TEST_P(Prefixes, AgreeForTablesBehindTheirVtable) {
  for (const Sample& sample : exhaustive::fixedSamplesOf(GetParam())) {
    const exhaustive::TablePlace root = exhaustive::frameOf(sample).tables[0];
    const size_t length = root.message->vtableLength;
    std::vector<uint8_t> bytes(4 + length);
    exhaustive::putNumber(bytes, 0, 4, 4 + length, sample.reversed);
    std::copy_n(sample.bytes.begin() + static_cast<std::ptrdiff_t>(root.vtable), length,
                bytes.begin() + 4);
    bytes.insert(bytes.end(), sample.bytes.begin() + 4,
                 sample.bytes.begin() + static_cast<std::ptrdiff_t>(root.vtable));
    exhaustive::putNumber(bytes, 4 + length, 4, length, sample.reversed);
    for (size_t size = 0; size <= bytes.size(); ++size) {
      if (isTried(sample, size) &&
          !agrees(sample, {bytes.data(), size}, GuardedBuffer::Edge::End)) {
        return;
      }
    }
  }
}

EXHAUSTIVE_OVER_MESSAGES(Prefixes);

}  // namespace
