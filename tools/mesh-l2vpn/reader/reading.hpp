// What a reader says of a message: what every byte of it is, and what is wrong with it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tool {

enum class Part : uint8_t {
  Root,
  Frame,  // a table's first word, its vtable's two lengths
  Entry,  // of a slot in the vtable
  Scalar,
  Word,    // an offset word
  Length,  // of bytes, or a vector's count
  Contents,
  Unknown,  // entries behind the last known slot
  Padding,  // zeros that nobody reads
  Unread,   // other bytes that nobody reads
};

// Bytes with one meaning.
struct Range {
  uint32_t at;
  uint32_t size;
  Part part;
  std::string path;     // of the slot it belongs to, as "f1.f3"; empty for the root table
  std::string meaning;  // "offset word"
  std::string value;    // "42 (0x2a)", "leads to 32"
  int64_t target = -1;  // the position that it leads to
};

struct Fault {
  uint32_t at;  // the bytes that are to blame
  uint32_t size;
  std::string path;
  std::string text;
  bool isTolerated;  // receivers take the message all the same
};

// What a reader decides.
struct Verdict {
  std::vector<Fault> faults;   // in the order in which a reader meets them, 1000 or so at most
  bool hasMoreFaults = false;  // than are kept
  bool isRejected = false;     // by receivers
  uint64_t memory = 0;         // bytes that decoding allocates

  [[nodiscard]] bool isAccepted() const { return !isRejected; }

  // Faults beyond what a person reads are dropped, but never the first that makes receivers reject
  // the message.
  void addFault(Fault fault);
};

// And what it says of every byte.
struct Reading : Verdict {
  std::vector<Range> ranges;  // by position; every byte is in one at least
  std::vector<std::string> notes;
  bool isCut = false;  // there is more to say than there are ranges for

  // Whether one more is of use to a person.
  [[nodiscard]] bool takesNote() const;
};

// More ranges than any message has that can be decoded: 4049 items fit into the largest memory.
inline constexpr size_t mostRanges = 250'000;

// More memory than this is not given to one message: a small one can ask for nearly 4 GiB.
inline constexpr uint64_t largestMemory = uint64_t{64} << 20;
void refuseTooMuchMemory(const Verdict& verdict);

// "2 faults"
std::string faultCountText(const Verdict& verdict);

// "byte 24, f1.f8: 13 bytes where 12 belong"
std::string faultText(const Fault& fault);

// What is written beside raw bytes: "42 (0x2a)".
std::string numberText(uint64_t value);

// What is written beside a string's bytes: "zeros", the text that they are, or hexadecimal digits;
// the beginning of long ones.
std::string contentsText(std::span<const uint8_t> contents);

}  // namespace tool
