// One execution damages a random message and reads it in both ways. Or it writes a random record,
// compares the result with that of the slow writer, and reads it again.
#pragma once

#include "damage.hpp"
#include "host.hpp"
#include "memory.hpp"
#include "records.hpp"

namespace differential {

// What an execution did: it read a message in one of the ways (with Way's numbers), it read a
// message that was rejected, or it wrote messages.
enum class Result : uint8_t { FixedImage, Quick, SlotBySlot, Rejected, Written };
inline constexpr size_t resultCount = 5;

class Executor {
 public:
  explicit Executor(uint64_t seed);

  // Returns what it did. Ends the program at a difference.
  Result execute(uint64_t number);

  // The message of the last execution, as an index.
  [[nodiscard]] size_t subjectIndex() const { return subjectIndex_; }
  [[nodiscard]] const std::vector<Subject>& subjects() const { return subjects_; }

  // Limits all later executions to this message. Returns false if no message has the name.
  bool restrictTo(const char* name);

  // Prints how to repeat the current execution, and its input. Then ends the program.
  [[noreturn]] void fail(const char* what) const;

 private:
  // A record at the end of its memory. The record and the bytes before it have known values.
  struct Reading {
    TrappedMemory memory;
    Trace trace;
    uint8_t* record = nullptr;
  };

  size_t choose(Random& random) const;
  void write(Random& random, const Subject& subject, Draft& draft);
  void damage(Random& random, Draft& draft);
  const uint8_t* place(Random& random);
  void prepare(Reading& reading, int fill, uint32_t refused) const;
  Result compareReadings(Random& random);
  Result compareWritings(Random& random);
  uint32_t writeExpected(const uint8_t* record, uint8_t* to) const;
  void compareSent(const uint8_t* records, uint32_t count);
  void comparePacked(Random& random, const uint8_t* record);
  void compareTraces() const;
  void compareRecords();
  void relocateParts(const Reading& reading) const;

  uint64_t seed_;
  uint64_t number_ = 0;
  std::vector<Subject> subjects_;
  // Contains each message as many times as its weight.
  std::vector<uint8_t> choices_;
  size_t subjectIndex_ = 0;
  const Subject* subject_ = nullptr;
  Records records_;
  TrappedMemory source_;
  TrappedMemory buffer_;
  // Holds the filler, and a message during its execution.
  TrappedMemory longBuffer_;
  std::vector<uint8_t> filler_;
  TrappedMemory packed_;
  Draft draft_{};
  Draft other_{};
  Reading quick_;
  Reading slow_;
  const uint8_t* data_ = nullptr;
  uint32_t length_ = 0;
};

}  // namespace differential
