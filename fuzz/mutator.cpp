// Mutations that know what a message is. Blind ones rarely leave a readable message.

#include <algorithm>
#include <random>

#include "input.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/generate.hpp"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t largest);

namespace {

// A message of random contents, in one of its arrangements.
std::vector<uint8_t> validMessage(const fuzz::Head& head, std::mt19937_64& random) {
  const oracle::Description& message = oracle::descriptionOf(head.operations().name);
  const auto density = static_cast<oracle::Density>(random() % 3);
  const oracle::Value value = oracle::randomValue(message, random, density);
  if (!message.hasOutOfLineParts && random() % 2 == 0) {
    return oracle::fixedImage(message, value, head.reversed());
  }
  std::vector<uint8_t> bytes;
  for (const std::optional<uint8_t>& byte : oracle::compactBytes(message, value, head.reversed())) {
    bytes.push_back(byte.value_or(0));
  }
  return bytes;
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t largest,
                                          unsigned int seed) {
  std::mt19937_64 random(seed);
  const uint64_t choice = random() % 8;
  if (size <= fuzz::headSize || largest <= fuzz::headSize || choice >= 4) {
    return LLVMFuzzerMutate(data, size, largest);
  }
  uint8_t* const body = data + fuzz::headSize;
  const fuzz::Head head{data[0], data[1]};
  const std::vector<uint8_t> bytes =
      choice == 0 ? validMessage(head, random) : oracle::mutate({body, data + size}, random);
  const size_t kept = std::min(bytes.size(), largest - fuzz::headSize);
  std::copy_n(bytes.begin(), kept, body);
  return fuzz::headSize + kept;
}
