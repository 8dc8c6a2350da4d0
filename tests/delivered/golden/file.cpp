#include "delivered/golden/file.hpp"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "oracle/values/text.hpp"

namespace golden {
namespace {

using oracle::joined;

class Reader {
 public:
  explicit Reader(const std::string& path) : path_(path), in_(path) {
    if (!in_) {
      fail("cannot be opened");
    }
  }

  File read() {
    std::string text;
    while (std::getline(in_, text)) {
      ++line_;
      if (text.starts_with("  ")) {
        std::istringstream words(text);
        (value_ != nullptr ? readField(words) : readRow(words));
      } else if (!text.empty()) {
        endImage();
        std::istringstream words(text);
        readHeading(words);
      }
    }
    endImage();
    return file_;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw std::runtime_error(joined({path_, ":", std::to_string(line_), ": ", what}));
  }

  template <typename Word>
  Word next(std::istringstream& words) const {
    Word word{};
    if (!(words >> word)) {
      fail("ends early");
    }
    return word;
  }

  uint64_t numberOf(const std::string& word, int base) const {
    size_t used = 0;
    uint64_t number = 0;
    try {
      number = std::stoull(word, &used, base);
    } catch (const std::logic_error&) {
      fail(joined({word, " is no number"}));
    }
    return used == word.size() ? number : (fail(joined({word, " is no number"})), 0);
  }

  void readHeading(std::istringstream& words) {
    const auto heading = next<std::string>(words);
    value_ = nullptr;
    if (heading == "message") {
      file_.name = next<std::string>(words);
    } else if (heading == "identifier") {
      file_.id = static_cast<uint32_t>(numberOf(next<std::string>(words), 16));
    } else if (heading == "record") {
      file_.recordSize = next<uint32_t>(words);
    } else if (heading == "sent") {
      file_.sentFixed = next<std::string>(words) == "fixed";
    } else if (heading == "values") {
      const auto [place, isNew] = file_.values.emplace(
          next<std::string>(words), oracle::zeroValue(oracle::descriptionOf(file_.name)));
      value_ = isNew ? &place->second : (fail("is there twice"), nullptr);
    } else if (heading == "image") {
      readImageHeading(words);
    } else {
      fail("begins with an unknown word");
    }
  }

  void readImageHeading(std::istringstream& words) {
    std::string rest;
    std::getline(words >> std::ws, rest);
    const size_t colon = rest.find(": ");
    if (colon == std::string::npos) {
      fail("states no size");
    }
    Image image;
    image.title = rest.substr(0, colon);
    std::istringstream title(image.title);
    image.value = next<std::string>(title);
    image.fixed = next<std::string>(title) == "fixed";
    image.reversed = image.title.ends_with(" reversed");
    std::istringstream size(rest.substr(colon + 2));
    stated_ = next<size_t>(size);
    file_.images.push_back(image);
    inImage_ = true;
  }

  void endImage() {
    if (inImage_ && file_.images.back().bytes.size() != stated_) {
      fail(joined({"the image before has ", std::to_string(file_.images.back().bytes.size()),
                   " bytes and states ", std::to_string(stated_)}));
    }
    inImage_ = false;
  }

  // Two digits each, or a count, "x" and two digits; up to the annotation.
  std::vector<uint8_t> readBytes(std::istringstream& words) const {
    std::vector<uint8_t> bytes;
    std::string word;
    std::string before;
    while (words >> word && word != "|") {
      if (word == "x") {
        bytes.pop_back();
        const auto byte = static_cast<uint8_t>(numberOf(next<std::string>(words), 16));
        bytes.insert(bytes.end(), numberOf(before, 10), byte);
      } else {
        bytes.push_back(static_cast<uint8_t>(numberOf(word, 16)));
      }
      before = word;
    }
    return bytes;
  }

  void readRow(std::istringstream& words) {
    if (!inImage_) {
      fail("stands in no section");
    }
    std::vector<uint8_t>& bytes = file_.images.back().bytes;
    if (numberOf(next<std::string>(words), 16) != bytes.size()) {
      fail("states another place");
    }
    const std::vector<uint8_t> row = readBytes(words);
    bytes.insert(bytes.end(), row.begin(), row.end());
  }

  // "f1[0].f3": the field f3 of the first item at f1.
  oracle::FieldValue& fieldAt(oracle::Value& value, const std::string& path) const {
    const size_t end = path.find_first_of(".[");
    const std::string name = path.substr(0, end);
    for (size_t slot = 0; slot < value.fields.size(); ++slot) {
      if (value.message->fields[slot].name != name) {
        continue;
      }
      if (end == std::string::npos) {
        return value[slot];
      }
      const size_t item = path[end] == '[' ? numberOf(path.substr(end + 1, 1), 10) : 0;
      const size_t dot = path.find('.', end);
      return fieldAt(value[slot].items.at(item), path.substr(dot + 1));
    }
    fail(joined({"names no field: ", path}));
  }

  void readField(std::istringstream& words) {
    const auto path = next<std::string>(words);
    oracle::FieldValue& field = fieldAt(*value_, path);
    const auto type = next<std::string>(words);
    if (type == "items") {
      setItems(field, std::vector<oracle::Value>(
                          next<size_t>(words),
                          oracle::zeroValue(oracle::descriptionOf("l2vpn_cfg_query_dfx_item"))));
    } else if (type == "bytes") {
      setBytes(field, readBytes(words));
    } else if (type.starts_with("bytes[")) {
      field.bytes = readBytes(words);
      if (type != joined({"bytes[", std::to_string(field.bytes.size()), "]"})) {
        fail("has another number of bytes");
      }
    } else {
      field.scalar = numberOf(next<std::string>(words), 16);
    }
  }

  std::string path_;
  std::ifstream in_;
  size_t line_ = 0;
  File file_;
  oracle::Value* value_ = nullptr;
  bool inImage_ = false;
  size_t stated_ = 0;
};

}  // namespace

File readFile(const std::string& path) {
  return Reader(path).read();
}

}  // namespace golden
