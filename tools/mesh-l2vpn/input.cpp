#include "input.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "failure.hpp"
#include "hex.hpp"

namespace tool {
namespace {

[[noreturn]] void failReading(const std::string& file) {
  throw Failure(Exit::System, file + ": " + std::strerror(errno));
}

}  // namespace

std::string readAll(const std::string& file) {
  struct Close {
    void operator()(std::FILE* opened) const {
      if (opened != stdin) {
        std::fclose(opened);
      }
    }
  };
  const std::unique_ptr<std::FILE, Close> opened(file == "-" ? stdin
                                                             : std::fopen(file.c_str(), "rb"));
  if (!opened) {
    failReading(file);
  }
  std::string contents;
  char buffer[65536];
  while (const size_t count = std::fread(buffer, 1, sizeof buffer, opened.get())) {
    contents.append(buffer, count);
  }
  if (std::ferror(opened.get()) != 0) {
    failReading(file);
  }
  return contents;
}

std::vector<uint8_t> readBytes(const std::string& file, InputForm form) {
  const std::string contents = readAll(file);
  if (form != InputForm::Binary) {
    if (auto bytes = fromHexText(contents)) {
      return *bytes;
    }
    if (form == InputForm::Hex) {
      throw Failure(Exit::BadInput, file + ": not hexadecimal text");
    }
  }
  return {contents.begin(), contents.end()};
}

}  // namespace tool
