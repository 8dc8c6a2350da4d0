// Where the frame of a good message stands: everything that leads from one place to another.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "agreement/exhaustive/samples.hpp"

namespace exhaustive {

struct TablePlace {
  const oracle::Description* message;
  size_t table;
  size_t vtable;
};

struct Frame {
  std::set<size_t> bytes;          // of root, vtables, tables' first words, offset and length words
  std::vector<size_t> words;       // the four-byte numbers among them
  std::vector<size_t> halves;      // the two-byte numbers
  std::vector<TablePlace> tables;  // the root's first
};

Frame frameOf(const Sample& sample);

uint64_t numberAt(const std::vector<uint8_t>& bytes, size_t at, uint32_t width, bool reversed);
void putNumber(std::vector<uint8_t>& bytes, size_t at, uint32_t width, uint64_t number,
               bool reversed);

}  // namespace exhaustive
