// The reading half of an execution.
#include "execution.hpp"
#include "msg/receive.hpp"

namespace differential {
namespace {

constexpr uint32_t mostChanges = 8;

// Known bytes around a record and around a buffer.
constexpr uint32_t beside = 16;
constexpr int besideBuffer = 0xEE;

}  // namespace

void Executor::write(Random& random, const Subject& subject, Draft& draft) {
  uint8_t* const record = source_.end - subject.size();
  records_.fill(random, subject, record);
  if (subject.isSentFixed() && random.oneIn(2)) {
    receiveInto(draft.bytes.data());
    recordInto(slow_.trace, 0);
    subject.sendSingle(0, record, 0, 0);
    draft.held = lastSent().length;
  } else {
    // Counted but unwritten bytes must not depend on earlier executions.
    std::memset(draft.bytes.data(), unwritten, subject.isLarge() ? Draft::capacity : 512);
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
  // None, one, two, or any number up to the maximum.
  const uint32_t upTo = random.below(4);
  const uint32_t changes = upTo < 3 ? upTo : random.below(mostChanges + 1);
  for (uint32_t index = 0; index < changes; ++index) {
    change(random, subject_->schema(), draft);
  }
}

// Puts the draft into its buffer: at the end or the start of memory. A long draft has filler behind
// it, up to the end.
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

// Replaces pointers to blocks by the blocks' positions.
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
                              loggedFunction(slow_.trace.calls[0]) == subject_->schema().rootReader;
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

}  // namespace differential
