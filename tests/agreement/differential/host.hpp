// The program's own host and middleware. They are cheap and record every call.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace differential {

// One call as words: the function, then its arguments. Texts are addresses, blocks are positions in
// the trace's arena.
using Call = std::array<uint64_t, 10>;

// The calls that a reading made of its host. Its blocks are in the trace's own arena.
struct Trace {
  static constexpr uint32_t capacity = 64;

  Trace();

  std::array<Call, capacity> calls{};
  uint32_t count = 0;
  uint32_t used = 0;
  std::vector<uint8_t> arena;
};

struct Block {
  uint32_t at;
  uint32_t size;
};

// The kind of a call: "allocation", "release" or "log".
const char* callName(const Call& call);

// The block that a call received, or one of size 0.
Block blockOf(const Call& call);

// The function and text of a log call; null for other calls.
const char* loggedFunction(const Call& call);

// The initial value of the bytes of a block and behind it.
inline constexpr int unwritten = 0xB7;

// The compared length of each block. It includes bytes behind the end, which must not change.
inline constexpr uint32_t behindBlock = 16;

// Empties a trace and records all later calls in it. `refused` is the number of the allocation that
// fails, counted from 1; 0 for none.
void recordInto(Trace& trace, uint32_t refused);

// The messages of the last call of the middleware, without gaps.
struct Sent {
  uint8_t* bytes;
  uint32_t length;
  uint32_t id;
};

// Copies all later sent messages to `into`, if there is room for them.
void receiveInto(uint8_t* into);
const Sent& lastSent();

}  // namespace differential
