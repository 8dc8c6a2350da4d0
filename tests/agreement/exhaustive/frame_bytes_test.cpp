// Every wrong byte, and every wrong bit, in the frame of a good message.

#include <array>

#include "agreement/exhaustive/agreement.hpp"

namespace {

using exhaustive::agrees;
using exhaustive::Sample;

class Frames : public testing::TestWithParam<Sample> {};

TEST_P(Frames, AgreeOnEveryValueOfEveryByte) {
  const Sample& sample = GetParam();
  // For a message of many KiB, the values beside the good one and beside the borders.
  constexpr std::array telling{0, 1, 2, 3, 4, 5, 6, 7, 8, 0x7F, 0x80, 0xFC, 0xFE, 0xFF};
  for (const size_t at : exhaustive::frameOf(sample).bytes) {
    std::vector<uint8_t> bytes = sample.bytes;
    const int good = bytes[at];
    for (int value = 0; value < 256; ++value) {
      if (sample.isLarge() && std::abs(value - good) > 2 &&
          std::find(telling.begin(), telling.end(), value) == telling.end()) {
        continue;
      }
      bytes[at] = static_cast<uint8_t>(value);
      if (!agrees(sample, bytes)) {
        return;
      }
    }
  }
}

TEST_P(Frames, AgreeWithAnyTwoFirstBitsFlipped) {
  const Sample& sample = GetParam();
  const size_t bits = sample.isLarge() ? 8 * 8 : 16 * 8;
  const auto flip = [](std::vector<uint8_t>& bytes, size_t bit) {
    bytes[bit / 8] = static_cast<uint8_t>(bytes[bit / 8] ^ (1U << (bit % 8)));
  };
  for (size_t one = 0; one < bits; ++one) {
    for (size_t other = 0; other <= one; ++other) {
      std::vector<uint8_t> bytes = sample.bytes;
      flip(bytes, one);
      if (other != one) {
        flip(bytes, other);
      }
      if (!agrees(sample, bytes)) {
        return;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Frames, testing::ValuesIn(exhaustive::shapes()),
                         [](const auto& test) { return test.param.name(); });

using FixedImages = exhaustive::EveryMessage;

// Any bit: of contents, frame and padding.
TEST_P(FixedImages, AgreeWithAnyBitFlipped) {
  for (const Sample& sample : exhaustive::fixedSamplesOf(GetParam())) {
    const exhaustive::Frame frame = exhaustive::frameOf(sample);
    const size_t padding = frame.tables[0].vtable - 4;
    for (size_t at = 0; at < sample.bytes.size(); ++at) {
      if (sample.isLarge() && at < padding && frame.bytes.count(at) == 0) {
        continue;
      }
      for (uint32_t bit = 0; bit < 8; ++bit) {
        std::vector<uint8_t> bytes = sample.bytes;
        bytes[at] = static_cast<uint8_t>(bytes[at] ^ (1U << bit));
        if (!agrees(sample, bytes)) {
          return;
        }
      }
    }
  }
}

EXHAUSTIVE_OVER_MESSAGES(FixedImages);

}  // namespace
