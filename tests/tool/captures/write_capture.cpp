// Writes a capture of random records of every message, in both arrangements in turn.
//
//   write_capture FILE COUNT [damaged|sound [MESSAGE...]]    damaged: mutates half of the tables
//                                                            MESSAGE...: writes these messages
//                                                            alone

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <set>

#include "inspect/captures/capture_file.hpp"
#include "inspect/messages/codec.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"

namespace inspect {
namespace {

constexpr uint64_t start = 1'700'000'000'000'000'000;
constexpr uint64_t interval = 1'000'000;  // nanoseconds
constexpr size_t samplesOfEach = 12;

Bytes sample(const KnownMessage& message, size_t number, bool isDamaged, std::mt19937_64& random) {
  const oracle::Description& type = oracle::descriptionOf(std::string(message.name));
  const oracle::RecordImage image(
      type, oracle::randomValue(type, random, static_cast<oracle::Density>(number % 3)));
  OwnedRecord record(message);
  std::memcpy(record.data(), image.data(), message.schema().size);
  const Bytes bytes = number % 2 == 0 ? encodeCompact(record) : encode(record, Form::AsSent);
  return isDamaged && number % 4 >= 2 ? oracle::mutate(bytes, random) : bytes;
}

void write(const char* file, uint64_t count, bool isDamaged, const std::set<std::string_view>& of) {
  std::mt19937_64 random(count);
  std::vector<std::pair<uint32_t, Bytes>> samples;
  for (size_t number = 0; number < samplesOfEach; ++number) {
    for (const KnownMessage& message : messages()) {
      if (!of.empty() && !of.contains(message.name)) {
        continue;
      }
      samples.emplace_back(message.id(), sample(message, number, isDamaged, random));
    }
  }
  CaptureWriter writer(file);
  for (uint64_t index = 0; index < count; ++index) {
    const auto& [id, bytes] = samples[index % samples.size()];
    writer.write({start + index * interval, 1, 2, id, index, bytes});
  }
  writer.writeStatistics(count, 0);
}

}  // namespace
}  // namespace inspect

int main(int count, char** words) {
  if (count < 3) {
    return 2;
  }
  const std::set<std::string_view> of(words + std::min(count, 4), words + count);
  inspect::write(words[1], std::strtoull(words[2], nullptr, 10),
                 count >= 4 && words[3] == std::string_view("damaged"), of);
  return 0;
}
