// A golden file, read back: the records and the bytes of one message.
#ifndef GOLDEN_FILE_HPP
#define GOLDEN_FILE_HPP

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace golden {

struct Image {
  std::string title;  // of words: its value's name, "compact" or "fixed", perhaps "reversed"
  std::string value;
  bool fixed = false;
  bool reversed = false;
  std::vector<uint8_t> bytes;
};

struct File {
  std::string name;
  uint32_t id = 0;
  uint32_t recordSize = 0;
  bool sentFixed = false;
  std::map<std::string, oracle::Value> values;
  std::vector<Image> images;
};

// Throws std::runtime_error, naming file and line, for anything that is not of the format: an
// unknown field, a row out of place, a number of bytes that is not the stated one.
File readFile(const std::string& path);

}  // namespace golden

#endif
