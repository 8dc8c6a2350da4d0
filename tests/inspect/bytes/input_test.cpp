// Files of a message: bytes, or text with hexadecimal digits.

#include "inspect/bytes/input.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <numeric>

#include "inspect/bytes/failure.hpp"

namespace inspect {
namespace {

using Bytes = std::vector<uint8_t>;

class Input : public testing::Test {
 protected:
  void TearDown() override { std::remove(path_.c_str()); }

  void write(const std::string& contents) const {
    std::ofstream(path_, std::ios::binary) << contents;
  }

  // The error of reading the file; empty if there is none.
  [[nodiscard]] std::string failure(InputForm form, Cause cause = Cause::BadInput) const {
    try {
      readBytes(path_, form);
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.cause(), cause);
      return failure.what();
    }
    return "";
  }

  const std::string path_ = testing::TempDir() + "input_" + std::to_string(getpid()) + "_" +
                            testing::UnitTest::GetInstance()->current_test_info()->name();
};

std::string_view textOf(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST_F(Input, IsTextWithoutControlCharacters) {
  for (int code = 0; code < 256; ++code) {
    const auto letter = static_cast<char>(code);
    write(std::string("# ") + letter + '\n');
    const bool isControl = (code < 0x20 && (code < '\t' || code > '\r')) || code == 0x7F;
    const Bytes comment;
    const Bytes bytes{'#', ' ', static_cast<uint8_t>(code), '\n'};
    EXPECT_EQ(readBytes(path_, InputForm::Guessed), isControl ? bytes : comment) << code;
    EXPECT_EQ(readBytes(path_, InputForm::Binary), bytes) << code;
  }
}

TEST_F(Input, HasTheFormThatIsAskedFor) {
  write("0102");
  EXPECT_EQ(readBytes(path_, InputForm::Guessed), (Bytes{1, 2}));
  EXPECT_EQ(readBytes(path_, InputForm::Hex), (Bytes{1, 2}));
  EXPECT_EQ(readBytes(path_, InputForm::Binary), (Bytes{'0', '1', '0', '2'}));
  write("words");
  const std::string reason =
      "line 1 is not hexadecimal text: 'words' is not hexadecimal digits of whole bytes";
  EXPECT_EQ(failure(InputForm::Hex), path_ + ": " + reason);
  EXPECT_EQ(failure(InputForm::Guessed),
            path_ + ": looks like text, but " + reason + "; use --binary for bytes");
}

TEST_F(Input, RejectsACaptureUnlessItIsBinary) {
  const std::string capture = "\x0A\x0D\x0D\x0A and more";
  write(capture);
  const std::string refusal =
      path_ + ": this is a capture; use decode, or --packet N for one of its packets";
  EXPECT_EQ(failure(InputForm::Guessed), refusal);
  EXPECT_EQ(failure(InputForm::Hex), refusal);
  EXPECT_EQ(readBytes(path_, InputForm::Binary), Bytes(capture.begin(), capture.end()));
}

TEST_F(Input, ReportsSystemErrors) {
  EXPECT_EQ(failure(InputForm::Guessed, Cause::System), path_ + ": No such file or directory");
  EXPECT_THROW(readAll(testing::TempDir()), Failure);
  // Opens, but nothing is mapped at its beginning.
  InputFile memory("/proc/self/mem");
  EXPECT_TRUE(memory.available().empty());
  EXPECT_EQ(memory.error(), EIO);
  EXPECT_THROW(readAll("/proc/self/mem"), Failure);
}

TEST_F(Input, LooksAheadWithoutReading) {
  write("abcdef");
  InputFile file(path_);
  EXPECT_EQ(textOf(file.peek(3)), "abc");
  EXPECT_EQ(textOf(file.peek(7)), "abcdef");
  EXPECT_EQ(textOf(file.available()), "abcdef");
  file.skip(4);
  EXPECT_EQ(textOf(file.peek(2)), "ef");
  EXPECT_EQ(file.progress(), 4.0 / 6);
  file.skip(2);
  EXPECT_TRUE(file.peek(1).empty());
  EXPECT_TRUE(file.available().empty());
  EXPECT_EQ(file.error(), 0);
  EXPECT_EQ(file.name(), path_);
}

// In pieces that do not divide the buffer, with a look ahead of each.
TEST_F(Input, ReadsFilesLargerThanTheBuffer) {
  std::string contents(200'003, ' ');
  std::iota(contents.begin(), contents.end(), '\0');
  write(contents);
  EXPECT_EQ(readAll(path_), contents);
  InputFile file(path_);
  std::string taken;
  do {
    EXPECT_EQ(textOf(file.peek(999)), std::string_view(contents).substr(taken.size(), 999));
    const auto part = file.peek(777);
    taken.append(part.begin(), part.end());
    file.skip(part.size());
  } while (taken.size() < contents.size());
  EXPECT_EQ(taken, contents);
}

TEST_F(Input, ReadsLines) {
  const std::string longerThanTheBuffer(100'000, 'x');
  write("one\n\n" + longerThanTheBuffer + "\nlast");
  InputFile file(path_);
  EXPECT_EQ(readLine(file), "one");
  EXPECT_EQ(readLine(file), "");
  EXPECT_EQ(readLine(file), longerThanTheBuffer);
  EXPECT_EQ(readLine(file), "last");
  EXPECT_EQ(readLine(file), std::nullopt);
}

TEST_F(Input, ClosesItsFile) {
  write("");
  const auto lowestDescriptor = [this] {
    std::FILE* const file = std::fopen(path_.c_str(), "r");
    const int descriptor = fileno(file);
    std::fclose(file);
    return descriptor;
  };
  const int before = lowestDescriptor();
  readAll(path_);
  EXPECT_EQ(lowestDescriptor(), before);
}

}  // namespace
}  // namespace inspect
