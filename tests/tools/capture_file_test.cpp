// Captures are read as they were written, up to the first fault.

#include "capture_file.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "input.hpp"

namespace tool {
namespace {

using Bytes = std::vector<uint8_t>;

class Capture : public testing::Test {
 protected:
  void TearDown() override { std::remove(path_.c_str()); }

  void write(const std::string& contents) const {
    std::ofstream(path_, std::ios::binary) << contents;
  }

  // The sizes of the tables that are read.
  std::vector<size_t> read() {
    CaptureReader reader(path_);
    std::vector<size_t> sizes;
    while (const auto table = reader.next()) {
      sizes.push_back(table->bytes.size());
    }
    fault_ = reader.fault();
    lost_ = reader.lost();
    others_ = reader.otherPackets();
    return sizes;
  }

  void writeThree() const {
    CaptureWriter writer(path_);
    const Bytes bytes{1, 2, 3, 4, 5};
    for (size_t size = 3; size <= 5; ++size) {
      writer.write({1'700'000'000'123'456'789 + size, 7, 8, 0x5EED5F0D, UINT64_MAX - size,
                    std::span(bytes).first(size), size == 4 ? 2u : 0u});
    }
    writer.writeStatistics(3, 2);
  }

  const std::string path_ = testing::TempDir() + "capture_" +
                            testing::UnitTest::GetInstance()->current_test_info()->name() +
                            ".pcapng";
  std::string fault_;
  uint64_t lost_ = 0;
  uint64_t others_ = 0;
};

TEST_F(Capture, HoldsWhatWasWritten) {
  writeThree();
  EXPECT_TRUE(isCapture(path_));
  CaptureReader reader(path_);
  for (size_t size = 3; size <= 5; ++size) {
    const auto table = reader.next();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->time, 1'700'000'000'123'456'789 + size);
    EXPECT_EQ(table->source, 7u);
    EXPECT_EQ(table->destination, 8u);
    EXPECT_EQ(table->id, 0x5EED5F0D);
    EXPECT_EQ(table->extra, UINT64_MAX - size);
    const Bytes expected = {1, 2, 3, 4, 5};
    EXPECT_TRUE(std::ranges::equal(table->bytes, std::span(expected).first(size)));
  }
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.fault(), "");
  EXPECT_EQ(reader.lost(), 2u);
}

TEST_F(Capture, TellsWhereCallsWereMissed) {
  const Bytes bytes{1, 2, 3, 4, 5};
  const std::vector<uint64_t> missed{2, 0, UINT32_MAX + uint64_t{1}};
  {
    CaptureWriter writer(path_);
    for (const uint64_t count : missed) {
      writer.write({1, 7, 8, 9, 0, bytes, count});
    }
  }
  CaptureReader reader(path_);
  for (const uint64_t count : missed) {
    const auto table = reader.next();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->missedBefore, count);
    EXPECT_TRUE(std::ranges::equal(table->bytes, bytes));
  }
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.fault(), "");
  EXPECT_EQ(reader.lost(), UINT32_MAX + uint64_t{3}) << "a recorder that was killed";
}

TEST_F(Capture, CountsWhatWasMissedOnce) {
  const auto section = [this](uint64_t inPackets, std::optional<uint64_t> altogether) {
    CaptureWriter writer(path_);
    writer.write({1, 7, 8, 9, 0, {}, inPackets});
    if (altogether) {
      writer.writeStatistics(1, *altogether);
    }
  };
  section(3, 5);
  const std::string ended = readAll(path_);
  EXPECT_EQ(read().size(), 1u);
  EXPECT_EQ(lost_, 5u) << "two of them behind the last table";
  section(4, std::nullopt);
  write(ended + readAll(path_) + ended);
  EXPECT_EQ(read().size(), 3u);
  EXPECT_EQ(lost_, 14u);
}

TEST_F(Capture, CutAnywhereIsReadUpToThere) {
  writeThree();
  const std::string whole = readAll(path_);
  const std::vector<size_t> all{3, 4, 5};
  size_t sound = 0;
  for (size_t length = 0; length < whole.size(); ++length) {
    write(whole.substr(0, length));
    const std::vector<size_t> sizes = read();
    ASSERT_LE(sizes.size(), all.size());
    EXPECT_TRUE(std::equal(sizes.begin(), sizes.end(), all.begin()));
    sound += fault_.empty() ? 1 : 0;
  }
  // Cut between two blocks, nothing is wrong with it: behind the section, the interface, and each
  // of the three packets.
  EXPECT_EQ(sound, 5u);
}

TEST_F(Capture, ChangedAnywhereIsReadOrRefused) {
  writeThree();
  const std::string whole = readAll(path_);
  for (size_t at = 0; at < whole.size(); ++at) {
    for (const char mask : {'\x01', '\x80', '\xff'}) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ mask);
      write(changed);
      EXPECT_LE(read().size(), 3u);
    }
  }
}

TEST_F(Capture, OfTheOtherByteOrderIsRead) {
  // A section, an interface of microseconds, a packet whose table is two bytes.
  const auto text = [](std::initializer_list<int> bytes) {
    return std::string(bytes.begin(), bytes.end());
  };
  write(text({0x0A, 0x0D, 0x0D, 0x0A, 0, 0, 0, 28, 0x1A, 0x2B, 0x3C, 0x4D, 0, 1, 0, 0}) +
        std::string(8, '\xff') + text({0, 0, 0, 28}) +
        text({0, 0, 0, 1, 0, 0, 0, 20, 0, 147, 0, 0, 0, 0, 0, 0, 0, 0, 0, 20}) +
        text({0, 0, 0, 6, 0, 0, 0, 84, 0, 0,  0, 0, 0, 0,
              0, 0, 0, 0, 0, 5, 0, 0,  0, 34, 0, 0, 0, 34}) +
        "MESH" + text({1, 0, 32, 0, 7, 0, 0, 0, 8, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0}) +
        text({1, 0, 0, 0, 0, 0, 0, 0}) + text({0xAA, 0xBB, 0, 0}) +
        text({0, 4, 0, 8, 0, 0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0}) + text({0, 0, 0, 84}));
  CaptureReader reader(path_);
  const auto table = reader.next();
  ASSERT_TRUE(table) << reader.fault();
  EXPECT_EQ(table->time, 5000u);
  EXPECT_EQ(table->source, 7u);
  EXPECT_EQ(table->extra, 1u);
  EXPECT_EQ(table->bytes.size(), 2u);
  EXPECT_EQ(table->missedBefore, 258u);
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.fault(), "");
}

TEST_F(Capture, OtherFilesAreRefused) {
  write("no capture at all");
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_, "byte 0: not a pcapng file");
  write("");
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_, "byte 0: an empty file is no capture");
}

}  // namespace
}  // namespace tool
