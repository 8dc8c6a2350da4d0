// The writing half of an execution.
#include "execution.hpp"
#include "msg/receive.hpp"
#include "wire/fixed_image.hpp"
#include "wire/slow_writer.hpp"

namespace differential {

// Writes the expected message of a record: the slow writer's image, or the encoding.
uint32_t Executor::writeExpected(const uint8_t* record, uint8_t* to) const {
  if (subject_->isSentFixed()) {
    wire::writeImageAtRunTime(subject_->schema(), to, record);
    return wire::fixedLength(subject_->schema());
  }
  uint32_t size = Draft::capacity;
  if (subject_->pack(record, nullptr, &size) != msg::success) {
    fail("the record has no size");
  }
  // Counted but unwritten bytes keep this value.
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
  const uint32_t result = count == 1 ? subject_->sendSingle(0, records, 0, 0)
                                     : subject_->sendBatch(0, records, count, 0);
  if (result != msg::success || lastSent().length != length_ ||
      lastSent().id != subject_->message->id ||
      std::memcmp(lastSent().bytes, data_, length_) != 0) {
    fail("the message sent is not the one that was to be");
  }
}

// Packs into a buffer of exactly the message's size, or into one that fits any record.
void Executor::comparePacked(Random& random, const uint8_t* record) {
  uint32_t size = Draft::capacity;
  subject_->pack(record, nullptr, &size);
  const bool isExact = random.oneIn(2);
  uint8_t* const packed = isExact ? packed_.end - size : packed_.begin;
  std::memset(packed, unwritten, size);
  data_ = packed;
  length_ = size;
  size = isExact ? size : Draft::capacity;
  if (subject_->pack(record, packed, &size) != msg::success || size != length_) {
    fail("the record is not encoded");
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
  comparePacked(random, source_.end - subject_->size());
  return Result::Written;
}

}  // namespace differential
