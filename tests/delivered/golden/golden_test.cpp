// The library against the golden files: what it packs, sends and unpacks, byte for byte.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "delivered/golden/file.hpp"
#include "oracle/values/record_image.hpp"
#include "support/comparison.hpp"
#include "support/recorder.hpp"

namespace {

using golden::File;
using golden::Image;
using harness::Operations;

const std::filesystem::path directory = GOLDEN_DIRECTORY;

// Rows of 16 bytes, from the first row that differs.
std::string rows(const std::vector<uint8_t>& bytes, size_t first) {
  std::string text;
  for (size_t row = first; row < bytes.size() && row < first + 256; row += 16) {
    char place[24];
    std::snprintf(place, sizeof place, "\n  %04zx ", row);
    text += place;
    for (size_t index = row; index < std::min(row + 16, bytes.size()); ++index) {
      char digits[8];
      std::snprintf(digits, sizeof digits, " %02x", static_cast<unsigned>(bytes[index]));
      text += digits;
    }
  }
  return text;
}

testing::AssertionResult areTheSame(const std::vector<uint8_t>& engine,
                                    const std::vector<uint8_t>& file) {
  if (engine == file) {
    return testing::AssertionSuccess();
  }
  const auto at = std::mismatch(engine.begin(), engine.end(), file.begin(), file.end()).first;
  const size_t row = static_cast<size_t>(at - engine.begin()) / 16 * 16;
  return testing::AssertionFailure()
         << "byte " << at - engine.begin() << " differs\n the library: " << engine.size()
         << " bytes" << rows(engine, row) << "\n the file: " << file.size() << " bytes"
         << rows(file, row);
}

class Golden : public testing::TestWithParam<Operations> {
 protected:
  const Operations& operations() const { return GetParam(); }
  const oracle::Description& message() const { return oracle::descriptionOf(operations().name); }
  File file() const {
    return golden::readFile(directory / (std::string(operations().name) + ".txt"));
  }

  std::vector<uint8_t> packed(const oracle::Value& value) const {
    const oracle::RecordImage record(message(), value);
    std::vector<uint8_t> buffer(70000, 0xA5);
    auto length = static_cast<uint32_t>(buffer.size());
    EXPECT_EQ(operations().pack(record.data(), buffer.data(), &length), 0U);
    buffer.resize(length);
    return buffer;
  }

  std::vector<uint8_t> sent(const oracle::Value& value) const {
    harness::resetRecorder();
    const oracle::RecordImage record(message(), value);
    EXPECT_EQ(operations().sendSingle(1, record.data(), harness::unused, 0), 0U);
    EXPECT_EQ(harness::recorder().sent.size(), 1U);
    const harness::SentTable& table = harness::recorder().sent.at(0);
    EXPECT_EQ(table.id, file().id);
    return table.bytes;
  }

  oracle::Value unpacked(const std::vector<uint8_t>& bytes) const {
    harness::resetRecorder();
    oracle::RecordImage record(message(), 0xA5);
    EXPECT_EQ(operations().unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), record.data()),
              file().recordSize);
    oracle::Value value = oracle::load(message(), record.data());
    operations().freeUnpacked(record.data());
    EXPECT_TRUE(harness::recorder().blocks.empty());
    return value;
  }
};

TEST_P(Golden, FileStatesIdentityAndSize) {
  const File golden = file();
  EXPECT_EQ(golden.name, operations().name);
  EXPECT_EQ(golden.id, operations().id());
  EXPECT_EQ(golden.recordSize, operations().schema().size);
}

TEST_P(Golden, FileHoldsEveryCase) {
  const File golden = file();
  std::vector<std::string> titles;
  for (const Image& image : golden.images) {
    titles.push_back(image.title);
  }
  std::vector<std::string> expected{"zero compact", "full compact", "full compact reversed",
                                    "sparse compact"};
  if (golden.sentFixed) {
    expected.insert(expected.end(), {"full fixed", "full fixed reversed"});
  }
  EXPECT_EQ(titles, expected);
  EXPECT_EQ(golden.values.size(), 3U);
  EXPECT_EQ(golden.values.at("zero"), oracle::zeroValue(message()));
  EXPECT_FALSE(golden.values.at("full") == golden.values.at("sparse"));
}

TEST_P(Golden, ImagesAreWhatTheLibraryWrites) {
  const File golden = file();
  for (const Image& image : golden.images) {
    SCOPED_TRACE(image.title);
    const oracle::Value& value = golden.values.at(image.value);
    harness::useByteOrder(operations(), image.reversed);
    EXPECT_TRUE(areTheSame(image.fixed ? sent(value) : packed(value), image.bytes));
    if (!golden.sentFixed) {
      EXPECT_TRUE(areTheSame(sent(value), image.bytes));
    }
  }
}

TEST_P(Golden, ImagesAreWhatTheLibraryReads) {
  const File golden = file();
  for (const Image& image : golden.images) {
    SCOPED_TRACE(image.title);
    harness::useByteOrder(operations(), image.reversed);
    EXPECT_EQ(oracle::difference(unpacked(image.bytes), golden.values.at(image.value)), "");
  }
}

INSTANTIATE_TEST_SUITE_P(All, Golden, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(GoldenFiles, ExistForExactlyTheMessages) {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() == ".txt" && entry.path().stem() != "CMakeLists") {
      files.insert(entry.path().stem());
    }
  }
  std::set<std::string> names;
  for (const Operations& operations : harness::allOperations()) {
    names.emplace(operations.name);
  }
  EXPECT_EQ(files, names);
}

}  // namespace
