// The program's own host and middleware: cheap, and recording every call.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace differential {

// One call as words: what was called, then its arguments; texts by their addresses, blocks by their
// places in the trace's arena.
using Call = std::array<uint64_t, 10>;

// What a reading did to its host. The blocks of a reading lie in its trace's own arena.
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

// Names what a call was: "allocation", "release" or "log".
const char* callName(const Call& call);

// The block that a call was given, or one of size 0.
Block blockOf(const Call& call);

// The function and text of a call of the log; null for other calls.
const char* loggedFunction(const Call& call);

// What a block and the bytes behind it hold before they are written.
inline constexpr int unwritten = 0xB7;

// How much of each block is compared: bytes behind its end too, which nobody may write.
inline constexpr uint32_t behindBlock = 16;

// From here on, calls are recorded in a trace, which is emptied. `refused` is the number of the
// allocation that fails, from 1 on; 0 for none.
void recordInto(Trace& trace, uint32_t refused);

// The messages of the last call of the middleware, one after the other.
struct Sent {
  uint8_t* bytes;
  uint32_t length;
  uint32_t id;
};

// From here on, messages sent are copied to `into`, where there is room for them.
void receiveInto(uint8_t* into);
const Sent& lastSent();

}  // namespace differential
