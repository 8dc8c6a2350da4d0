#include "execution.hpp"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace differential {
namespace {

// A message's weight in the random choice. Messages with records or items of 16 KiB have weight 1.
constexpr int usualWeight = 24;

constexpr uint32_t largestRecord = uint32_t{1} << 15;
// The distance of the slot reader's record from the trap. If both records had the same position
// within a page, comparing them would cost more than reading them.
constexpr uint32_t fromTrap = 2048;

void print(const char* what, const uint8_t* bytes, size_t count) {
  std::printf("%s (%zu bytes):", what, count);
  for (size_t at = 0; at < count; ++at) {
    std::printf("%s%02x", at % 32 == 0 ? "\n  " : "", bytes[at]);
  }
  std::printf("\n");
}

}  // namespace

Executor::Executor(uint64_t seed)
    : seed_(seed),
      subjects_(bindSubjects()),
      records_(seed),
      source_(mapWritable(largestRecord)),
      buffer_(mapReadOnly(Draft::capacity)),
      longBuffer_(mapReadOnly(Draft::capacity)),
      filler_(Draft::capacity),
      packed_(mapWritable(Draft::capacity)),
      quick_{mapWritable(largestRecord), {}},
      slow_{mapWritable(largestRecord), {}} {
  for (size_t index = 0; index < subjects_.size(); ++index) {
    choices_.insert(choices_.end(), subjects_[index].isLarge() ? 1 : usualWeight,
                    static_cast<uint8_t>(index));
  }
  Random(seed, UINT64_MAX - 1).fill(filler_.data(), filler_.size());
  std::memcpy(longBuffer_.writable, filler_.data(), filler_.size());
}

bool Executor::restrictTo(const char* name) {
  for (size_t index = 0; index < subjects_.size(); ++index) {
    if (subjects_[index].name == name) {
      choices_ = {static_cast<uint8_t>(index)};
      return true;
    }
  }
  return false;
}

void Executor::fail(const char* what) const {
  std::printf("%s: %s\n", subject_->name.data(), what);
  std::printf("seed %" PRIu64 ", execution %" PRIu64 "; repeat it alone with\n", seed_, number_);
  std::printf("  differential --seed %" PRIu64 " --from %" PRIu64 " --executions 1", seed_,
              number_);
  if (choices_.size() == 1) {
    std::printf(" --only %s", subject_->name.data());
  }
  std::printf("\n");
  print("last record written", source_.end - subject_->size(), subject_->size());
  print("message", data_, length_);
  print("record, by the exported function", quick_.record, subject_->size());
  print("record, by the slot reader", slow_.record, subject_->size());
  for (const Reading* const reading : {&quick_, &slow_}) {
    std::printf("calls of the host, %s:\n", reading == &quick_ ? "exported" : "slot reader");
    for (uint32_t index = 0; index < reading->trace.count; ++index) {
      const Call& call = reading->trace.calls[index];
      std::printf("  %-10s", callName(call));
      for (size_t word = 1; word < call.size(); ++word) {
        std::printf(" %" PRIx64, call[word]);
      }
      std::printf("\n");
    }
  }
  std::fflush(stdout);
  std::_Exit(1);
}

size_t Executor::choose(Random& random) const {
  return choices_[random.below(static_cast<uint32_t>(choices_.size()))];
}

Result Executor::execute(uint64_t number) {
  number_ = number;
  Random random(seed_, number);
  subjectIndex_ = choose(random);
  subject_ = &subjects_[subjectIndex_];
  for (Reading* const reading : {&quick_, &slow_}) {
    reading->record = reading->memory.end - subject_->size() - (reading == &slow_ ? fromTrap : 0);
    reading->trace.count = 0;
  }
  length_ = 0;
  return random.oneIn(8) ? compareWritings(random) : compareReadings(random);
}

}  // namespace differential
