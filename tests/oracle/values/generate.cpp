#include "oracle/values/generate.hpp"

#include <algorithm>
#include <cstring>

#include "oracle/values/fill.hpp"

namespace oracle {
namespace {

uint64_t largestOf(uint32_t width) {
  return UINT64_MAX >> (64 - 8 * width);
}

class RandomSource : public Source {
 public:
  RandomSource(std::mt19937_64& random, Density density) : random_(random), density_(density) {}

  uint64_t scalar(uint32_t width) override {
    constexpr uint64_t edges[] = {0,      1,          0x7F,       0x80,       0xFF,
                                  0x7FFF, 0x8000,     0xFFFF,     0x7FFFFFFF, 0x80000000,
                                  0x100,  0xFFFFFFFF, 1ULL << 32, 1ULL << 63, UINT64_MAX};
    const uint64_t largest = largestOf(width);
    switch (density_) {
      case Density::Full:
        return 1 + below(random_, largest);
      case Density::Sparse:
        return below(random_, 2) == 0 ? 0 : 1 + below(random_, largest);
      case Density::Edge:
        return edges[below(random_, std::size(edges))] & largest;
    }
    misuse("unknown density");
  }

  std::vector<uint8_t> array(uint32_t size) override {
    constexpr uint8_t edges[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
    const uint8_t repeated = edges[below(random_, std::size(edges))];
    std::vector<uint8_t> bytes(size, repeated);
    if (density_ != Density::Edge) {
      for (size_t at = 0; at < size; at += sizeof(uint64_t)) {
        const uint64_t word = random_();
        std::memcpy(&bytes[at], &word, std::min(sizeof word, size - at));
      }
    }
    return bytes;
  }

  void fillString(FieldValue& field) override {
    switch (below(random_, 8)) {
      case 0:
      case 1:
        return;  // null
      case 2:
        return setBytes(field, {});
      case 3:
        return setBytes(field, array(1));
      case 4:
        return setBytes(field, array(200 + static_cast<uint32_t>(below(random_, 400))));
      default:
        return setBytes(field, array(2 + static_cast<uint32_t>(below(random_, 30))));
    }
  }

  std::optional<uint32_t> itemCount(FieldValue&) override {
    const auto count = static_cast<uint32_t>(below(random_, 4));
    if (count == 0 && below(random_, 4) != 0) {
      return std::nullopt;  // else a pointer that leads to no items
    }
    return count;
  }

 private:
  std::mt19937_64& random_;
  Density density_;
};

}  // namespace

Value randomValue(const Description& message, std::mt19937_64& random, Density density) {
  RandomSource source(random, density);
  return fill(message, source);
}

}  // namespace oracle
