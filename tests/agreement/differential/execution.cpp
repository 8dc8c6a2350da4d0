#include "execution.hpp"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "msg/receive.hpp"
#include "wire/fixed_image.hpp"
#include "wire/slow_writer.hpp"

namespace differential {
namespace {

// Of how many executions one is of a message whose records are of 16 KiB, where one of another
// message is chosen so many times.
constexpr int usualWeight = 24;

constexpr uint32_t largestRecord = uint32_t{1} << 15;
// How far the slot reader's record is from the trap: the other's place within a page, and wide
// loads that a trap cuts short, cost the comparison more than the readings cost.
constexpr uint32_t fromTrap = 2048;
constexpr uint32_t mostChanges = 8;

// Known bytes beside a record and beside a buffer.
constexpr uint32_t beside = 16;
constexpr int besideBuffer = 0xEE;

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
    if (std::strcmp(subjects_[index].name, name) == 0) {
      choices_ = {static_cast<uint8_t>(index)};
      return true;
    }
  }
  return false;
}

void Executor::fail(const char* what) const {
  std::printf("%s: %s\n", subject_->name, what);
  std::printf("seed %" PRIu64 ", execution %" PRIu64 "; repeat it alone with\n", seed_, number_);
  std::printf("  differential --seed %" PRIu64 " --from %" PRIu64 " --executions 1", seed_,
              number_);
  if (choices_.size() == 1) {
    std::printf(" --only %s", subject_->name);
  }
  std::printf("\n");
  print("record written", source_.end - subject_->size(), subject_->size());
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

void Executor::write(Random& random, const Subject& subject, Draft& draft) {
  uint8_t* const record = source_.end - subject.size();
  records_.fill(random, subject, record);
  if (subject.isSentFixed() && random.oneIn(2)) {
    receiveInto(draft.bytes.data());
    recordInto(slow_.trace, 0);
    subject.sendSingle(0, record, 0);
    draft.held = lastSent().length;
  } else {
    if (!subject.parts.empty()) {
      // Some bytes are counted and not written: without this they would be those of an earlier
      // execution.
      std::memset(draft.bytes.data(), unwritten, subject.isLarge() ? Draft::capacity : 1024);
    }
    draft.held = Draft::capacity;
    subject.pack(record, draft.bytes.data(), &draft.held);
  }
  draft.length = draft.held;
}

void Executor::damage(Random& random, Draft& draft) {
  if (random.oneIn(16)) {
    write(random, random.oneIn(2) ? *subject_ : subjects_[choose(random)], other_);
    splice(random, draft, other_);
  }
  if (random.oneIn(8)) {
    moveAll(random, draft);
  }
  if (random.oneIn(16)) {
    moveHead(random, draft);
  }
  if (random.oneIn(64)) {
    lengthen(random, draft);
  }
  // None, one, two, or any number up to the most.
  const uint32_t upTo = random.below(4);
  const uint32_t changes = upTo < 3 ? upTo : random.below(mostChanges + 1);
  for (uint32_t index = 0; index < changes; ++index) {
    change(random, *subject_->schema, draft);
  }
}

// Puts the draft into its buffer: at the end of memory, at its beginning, or, a long one, before
// filler that reaches to the end.
const uint8_t* Executor::place(Random& random) {
  if (draft_.held != draft_.length) {
    const uint8_t* const at = longBuffer_.end - draft_.length;
    std::memcpy(longBuffer_.toWrite(at), draft_.bytes.data(), draft_.held);
    return at;
  }
  if (random.oneIn(8)) {
    std::memcpy(buffer_.writable, draft_.bytes.data(), draft_.held);
    std::memset(buffer_.writable + draft_.held, besideBuffer, beside);
    return buffer_.begin;
  }
  const uint8_t* const at = buffer_.end - draft_.length;
  uint8_t* const to = buffer_.toWrite(at);
  std::memset(to - beside, besideBuffer, beside);
  std::memcpy(to, draft_.bytes.data(), draft_.held);
  return at;
}

void Executor::prepare(Reading& reading, int fill, uint32_t refused) const {
  std::memset(reading.record - beside, fill, beside + subject_->size());
  recordInto(reading.trace, refused);
}

// Makes pointers to blocks the blocks' places.
void Executor::relocateParts(const Reading& reading) const {
  for (const Part& part : subject_->parts) {
    uint8_t* const at = reading.record + part.pointer;
    const auto pointer = host::load<uint64_t>(at);
    const auto arena = reinterpret_cast<uintptr_t>(reading.trace.arena.data());
    if (pointer - arena < reading.trace.used) {
      host::store(at, pointer - arena + 1);
    }
  }
}

void Executor::compareTraces() const {
  const Trace& quick = quick_.trace;
  const Trace& slow = slow_.trace;
  if (quick.count != slow.count ||
      std::memcmp(quick.calls.data(), slow.calls.data(), quick.count * sizeof(Call)) != 0) {
    fail("the calls of the host differ");
  }
  for (uint32_t index = 0; index < quick.count; ++index) {
    const Block block = blockOf(quick.calls[index]);
    if (block.size != 0 &&
        std::memcmp(&quick.arena[block.at], &slow.arena[block.at], block.size + behindBlock) != 0) {
      fail("a block's contents differ");
    }
  }
}

void Executor::compareRecords() {
  if (!subject_->parts.empty()) {
    relocateParts(quick_);
    relocateParts(slow_);
  }
  if (std::memcmp(quick_.record - beside, slow_.record - beside, beside + subject_->size()) != 0) {
    fail("the records differ");
  }
}

Result Executor::compareReadings(Random& random) {
  write(random, *subject_, draft_);
  damage(random, draft_);
  data_ = place(random);
  length_ = draft_.length;
  constexpr int fills[] = {0x00, 0xA5, 0xFF};
  const int fill = fills[random.below(3)];
  const uint32_t refused = !subject_->parts.empty() && random.oneIn(4) ? 1 + random.below(3) : 0;

  prepare(slow_, fill, refused);
  const msg::Outcome outcome = msg::decodeAny(*subject_->receive, *subject_->message,
                                              host::ByteOrder::Host, data_, length_, slow_.record);
  const bool isRootRejected = slow_.trace.count != 0 &&
                              loggedFunction(slow_.trace.calls[0]) == subject_->schema->rootReader;
  if (outcome == msg::Outcome::ReleaseParts) {
    subject_->freeUnpacked(slow_.record);
  }

  prepare(quick_, fill, refused);
  if (subject_->unpack(data_, length_, quick_.record) != subject_->size()) {
    fail("the exported function's result is not the record's size");
  }
  compareTraces();
  compareRecords();

  const bool isRejected = outcome == msg::Outcome::ReleaseParts || isRootRejected;
  const auto result =
      isRejected ? Result::Rejected : static_cast<Result>(subject_->wayOf(data_, length_));
  if (draft_.held != draft_.length) {
    std::memcpy(longBuffer_.toWrite(data_), filler_.data() + (data_ - longBuffer_.begin),
                draft_.held);
  }
  return result;
}

// Writes what is to be sent of a record: its image, as the slow writer makes it, or its encoding.
uint32_t Executor::writeExpected(const uint8_t* record, uint8_t* to) const {
  if (subject_->isSentFixed()) {
    wire::writeImageAtRunTime(*subject_->schema, to, record);
    return wire::fixedLength(*subject_->schema);
  }
  uint32_t size = Draft::capacity;
  if (subject_->pack(record, nullptr, &size) != msg::success) {
    fail("the record has no size");
  }
  // Bytes that are counted and not written stay what they are.
  std::memset(to, unwritten, size);
  uint32_t room = Draft::capacity / 2;
  if (subject_->pack(record, to, &room) != msg::success || room != size) {
    fail("the record is not encoded");
  }
  return size;
}

void Executor::compareSent(const uint8_t* records, uint32_t count) {
  data_ = other_.bytes.data();
  length_ = 0;
  for (uint32_t index = 0; index < count; ++index) {
    length_ += writeExpected(records + size_t{subject_->size()} * index, &other_.bytes[length_]);
  }
  receiveInto(draft_.bytes.data());
  const uint32_t result =
      count == 1 ? subject_->sendSingle(0, records, 0) : subject_->sendBatch(0, records, count, 0);
  if (result != msg::success || lastSent().length != length_ ||
      lastSent().id != subject_->message->id ||
      std::memcmp(lastSent().bytes, data_, length_) != 0) {
    fail("the message sent is not the one that was to be");
  }
}

// Into a buffer of exactly the message's size.
void Executor::comparePacked(const uint8_t* record) {
  uint32_t size = Draft::capacity;
  subject_->pack(record, nullptr, &size);
  uint8_t* const packed = packed_.end - size;
  data_ = packed;
  length_ = size;
  if (subject_->pack(record, packed, &size) != msg::success || size != length_) {
    fail("the record is not encoded into a buffer of its size");
  }
  prepare(slow_, unwritten, 0);
  if (msg::decodeAny(*subject_->receive, *subject_->message, host::ByteOrder::Host, packed, size,
                     slow_.record) != msg::Outcome::Finished ||
      !isAsSent(*subject_, record, slow_.record)) {
    fail("the slot reader does not find the record in its encoding");
  }
}

Result Executor::compareWritings(Random& random) {
  recordInto(quick_.trace, 0);
  const uint32_t count = subject_->isLarge() ? 1 : 1 + random.below(2);
  uint8_t* const records = source_.end - size_t{subject_->size()} * count;
  for (uint32_t index = 0; index < count; ++index) {
    records_.fill(random, *subject_, records + size_t{subject_->size()} * index);
  }
  compareSent(records, count);
  // The last one ends at the trap.
  comparePacked(source_.end - subject_->size());
  return Result::Written;
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
