// A host and a middleware that take part in exercises: they count, and refuse memory when asked to.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

namespace exercise {

// Counted over all threads.
struct Counts {
  std::atomic<int64_t> blocksOut;
  std::atomic<uint64_t> blocks;
  std::atomic<uint64_t> refusals;
  std::atomic<uint64_t> calls;   // of the middleware
  std::atomic<uint64_t> tables;  // handed to it
  std::atomic<uint64_t> logs;
  std::atomic<uint64_t> flagQuestions;  // asked once by each module's binding
};

extern Counts counts;

// Every n-th request of the calling thread for memory is refused; 0: none.
void refuseEvery(uint32_t requests);

// Requests that the calling thread had refused.
uint64_t refusedHere();

// What the middleware answers to the calling thread.
void answerWith(uint32_t result);

// The first table of the calling thread's last send.
const std::vector<uint8_t>& firstTable();

// Reads every byte, so that a memory checker reports uninitialised ones.
void readAll(const uint8_t* bytes, uint64_t length);

}  // namespace exercise
