// One execution: it damages a random message and reads it in both ways, or it compares what the
// writers make of a random record with what the slow writer makes, and with what is read of it.
#pragma once

#include "damage.hpp"
#include "host.hpp"
#include "memory.hpp"
#include "records.hpp"

namespace differential {

// What an execution did: read a message, in one of the ways (as Way numbers them) or with a
// rejection, or wrote messages.
enum class Result : uint8_t { FixedImage, Quick, SlotBySlot, Rejected, Written };
inline constexpr size_t resultCount = 5;

class Executor {
 public:
  explicit Executor(uint64_t seed);

  // Returns what became of it. Ends the program at a difference.
  Result execute(uint64_t number);

  // The message of the last execution, as an index.
  [[nodiscard]] size_t subjectIndex() const { return subjectIndex_; }
  [[nodiscard]] const std::vector<Subject>& subjects() const { return subjects_; }

  // All executions are of this message from here on. Returns false if there is none of the name.
  bool restrictTo(const char* name);

  // Tells how the execution under way is repeated, and what it was given; then ends the program.
  [[noreturn]] void fail(const char* what) const;

 private:
  // A record at the end of its memory, with known bytes in it and before it.
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
  // Each message as often as it is to be chosen.
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
