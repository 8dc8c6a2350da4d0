// What a reader reports about a message: the meaning of every byte, and every fault.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace inspect {

enum class Part : uint8_t {
  Root,
  Head,   // a table's vtable offset, its vtable's two lengths
  Entry,  // of a slot in the vtable
  Scalar,
  Word,    // an offset word
  Length,  // of bytes, or a vector's count
  Contents,
  Unknown,  // entries after the last known slot
  Padding,  // unread zeros
  Unread,   // other unread bytes
};

// Bytes with one meaning.
struct Range {
  uint32_t at;
  uint32_t size;
  Part part;
  std::string path;     // of the slot it belongs to, as "f1.f3"; empty for the root table
  std::string meaning;  // "offset word"
  std::string value;    // "42 (0x2a)", "points to 32"
  int64_t target = -1;  // the position that it points to; -1: none
};

struct Fault {
  uint32_t at;  // the bytes at fault
  uint32_t size;
  std::string path;
  std::string text;
  bool isTolerated;  // receivers accept the message anyway
};

// The faults of a message, and what receivers do with it.
struct Verdict {
  std::vector<Fault> faults;   // in reading order, at most about 1000
  bool hasMoreFaults = false;  // than kept
  bool isRejected = false;     // by receivers
  uint64_t memory = 0;         // bytes that decoding allocates

  [[nodiscard]] bool isAccepted() const { return !isRejected; }

  // Keeps a limited number of faults, but always the first that makes receivers reject the message.
  void addFault(Fault fault);
};

// A verdict with the meaning of every byte.
struct Reading : Verdict {
  std::vector<Range> ranges;  // by position; every byte is in at least one
  std::vector<std::string> notes;
  bool isCut = false;  // the limit of ranges is reached

  // Whether there is room for another note.
  [[nodiscard]] bool takesNote() const;
};

// How many ranges a reading keeps: half of the memory limit, as each takes up to rangeSize bytes.
inline constexpr uint64_t rangeSize = 256;
uint64_t mostRanges();

// "2 faults"
std::string faultCountText(const Verdict& verdict);

// "byte 24, f1.f8: 13 bytes where 12 belong"
std::string faultText(const Fault& fault);

// A number as text: "42 (0x2a)".
std::string numberText(uint64_t value);

// A byte string as text: "zeros", its characters, or hexadecimal digits. Shortens long ones.
std::string contentsText(std::span<const uint8_t> contents);

}  // namespace inspect
