// Captures round-trip. Damage costs what is in the damaged block.

#include "inspect/captures/capture_file.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <tuple>

#include "inspect/bytes/input.hpp"
#include "inspect/captures/statistics.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/schema/document.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
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

  const std::string path_ = testing::TempDir() + "capture_" + std::to_string(getpid()) + "_" +
                            testing::UnitTest::GetInstance()->current_test_info()->name() +
                            ".pcapng";
  std::string fault_;
  uint64_t lost_ = 0;
  uint64_t others_ = 0;
};

TEST_F(Capture, RoundTrip) {
  writeThree();
  InputFile file(path_);
  EXPECT_TRUE(isCapture(file));
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

TEST_F(Capture, RecordsGaps) {
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

TEST_F(Capture, CountsMissedCallsOnce) {
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
  EXPECT_EQ(lost_, 5u) << "two of them after the last table";
  section(4, std::nullopt);
  write(ended + readAll(path_) + ended);
  EXPECT_EQ(read().size(), 3u);
  EXPECT_EQ(lost_, 14u);
}

TEST_F(Capture, ReadsTruncatedFiles) {
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
  // A file truncated between two blocks has no fault: after the section, the interface, the schema,
  // and each of the three packets.
  EXPECT_EQ(sound, 6u);
}

// A table of a capture, without its time.
using Told = std::tuple<uint32_t, uint32_t, uint32_t, uint64_t, Bytes>;

std::vector<Told> tablesOf(const std::string& path) {
  CaptureReader reader(path);
  std::vector<Told> all;
  while (const auto table = reader.next()) {
    all.emplace_back(table->source, table->destination, table->id, table->extra,
                     Bytes(table->bytes.begin(), table->bytes.end()));
  }
  return all;
}

// One changed byte changes or hides at most the table that it belongs to. The others are read as
// written, in order.
TEST_F(Capture, ChangedByteChangesOneTable) {
  writeThree();
  const std::string whole = readAll(path_);
  const std::vector<Told> written = tablesOf(path_);
  constexpr size_t firstPacket = 48 + 32;  // after the section and the interface
  for (size_t at = 0; at < whole.size(); ++at) {
    for (const char mask : {'\x01', '\x80', '\xff'}) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ mask);
      write(changed);
      size_t next = 0;
      size_t same = 0;
      size_t others = 0;
      for (const Told& told : tablesOf(path_)) {
        const auto found =
            std::find(written.begin() + static_cast<ptrdiff_t>(next), written.end(), told);
        (found == written.end() ? others : same) += 1;
        next = found == written.end() ? next + 1 : static_cast<size_t>(found - written.begin()) + 1;
      }
      EXPECT_LE(next, written.size()) << "byte " << at;
      EXPECT_LE(others, at < firstPacket ? 0U : 1U) << "byte " << at;
      EXPECT_GE(same, at < firstPacket ? 0U : 2U) << "byte " << at;
    }
  }
}

TEST_F(Capture, ReadsBigEndian) {
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

TEST_F(Capture, RejectsOtherFiles) {
  write("no capture at all");
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_, "byte 0: not a pcapng file");
  write("");
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_, "byte 0: an empty file is not a capture");
}

// A block of a little-endian file, its body padded with zeros.
std::string block(uint32_t type, std::string body) {
  body.resize((body.size() + 3) / 4 * 4);
  const auto word = [](uint32_t value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
  };
  const auto length = static_cast<uint32_t>(body.size() + 12);
  return word(type) + word(length) + body + word(length);
}

template <typename... Integer>
std::string numbers(Integer... values) {
  std::string text;
  (text.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
  return text;
}

std::string section() {
  return block(0x0A0D0D0A, numbers(0x1A2B3C4Du, uint16_t{1}, uint16_t{0}, UINT64_MAX));
}

// Of microseconds.
std::string interface(uint16_t linkType = 147) {
  return block(1, numbers(linkType, uint16_t{0}, 0u));
}

std::string packet(uint64_t time, uint32_t original, const std::string& options = "",
                   uint16_t version = 1) {
  const std::string table =
      "MESH" + numbers(version, uint16_t{32}, 7u, 8u, 9u, 0u, uint64_t{0}, 0xABu);
  return block(6, numbers(0u, static_cast<uint32_t>(time >> 32), static_cast<uint32_t>(time),
                          static_cast<uint32_t>(table.size()), original) +
                      table + options);
}

std::string statistics(uint32_t interface, uint64_t lost) {
  return block(5, numbers(interface, 0u, 0u, uint16_t{5}, uint16_t{8}, lost));
}

TEST_F(Capture, RejectsTimeOverflow) {
  write(section() + interface() + packet(5, 36) + packet(UINT64_MAX, 36));
  EXPECT_EQ(read().size(), 1u);
  EXPECT_EQ(fault_, "byte 116: a packet with a time before 1970 or after the year 2554");
}

TEST_F(Capture, AddsTheTimeOffsetOfAnInterface) {
  const auto shifted = [](int64_t seconds) {
    return block(1, numbers(uint16_t{147}, uint16_t{0}, 0u, uint16_t{14}, uint16_t{8}, seconds));
  };
  write(section() + shifted(1'700'000'000) + packet(5, 36));
  EXPECT_EQ(CaptureReader(path_).next()->time, 1'700'000'000'000'005'000U);
  write(section() + shifted(-3) + packet(4'000'000, 36) + packet(2'000'000, 36));
  CaptureReader reader(path_);
  EXPECT_EQ(reader.next()->time, 1'000'000'000U);
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.fault(), "byte 128: a packet with a time before 1970 or after the year 2554");
}

TEST_F(Capture, RejectsOtherMajorVersions) {
  std::string other = section();
  other[12] = 2;
  write(other + interface() + packet(1, 36));
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_, "byte 0: a section of pcapng version 2; this program reads version 1");
}

TEST_F(Capture, ContinuesBehindDamage) {
  const std::string good = section() + interface() + packet(1, 36);
  std::string damaged = packet(2, 36);
  damaged[4] = 3;
  write(good + damaged + packet(3, 36) + damaged + packet(4, 36));
  EXPECT_EQ(read().size(), 3u);
  EXPECT_EQ(fault_, "byte 116: a block of 3 bytes; reading continues at byte 184; faults: 2");
  // A length beyond the end, and lost bytes: blocks no longer begin at multiples of four.
  damaged[4] = 0;
  damaged[6] = 1;
  write(good + damaged.substr(0, 33) + packet(3, 36) + section() + interface() + packet(4, 36));
  EXPECT_EQ(read().size(), 3u);
  EXPECT_EQ(fault_,
            "byte 116: truncated inside a block of 65536 bytes; reading continues at byte 149");
}

TEST_F(Capture, NamesFormatsThatItDoesNotRead) {
  write("\x1f\x8b\x08 and more");
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_, "byte 0: this is a gzip file; unpack it with gunzip");
  for (const char* const magic :
       {"\xd4\xc3\xb2\xa1", "\xa1\xb2\xc3\xd4", "\x4d\x3c\xb2\xa1", "\xa1\xb2\x3c\x4d"}) {
    write(magic);
    EXPECT_TRUE(read().empty());
    EXPECT_EQ(fault_,
              "byte 0: this is a pcap file of the classic format; convert it with editcap -F "
              "pcapng");
  }
}

TEST_F(Capture, TellsWhyNoPacketIsATable) {
  const std::string advice = "; record captures with mesh-l2vpn record";
  write(section() + interface(1) + packet(1, 36));
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_,
            "no tables, other packets: 1; the last is of link type 1, tables are of 147" + advice);
  write(section() + interface() + packet(1, 36, "", 2) + packet(1, 36, "", 2));
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_,
            "no tables, other packets: 2; the last is of version 2, this program reads "
            "version 1" +
                advice);
  write(section() + interface());
  EXPECT_TRUE(read().empty());
  EXPECT_EQ(fault_, "") << "a record of nothing";
}

TEST_F(Capture, SaturatesLostCalls) {
  const auto lost = [](uint64_t count) { return numbers(uint16_t{4}, uint16_t{8}, count); };
  write(section() + interface() + packet(1, 36, lost(UINT64_MAX)) + packet(1, 36, lost(5)));
  EXPECT_EQ(read().size(), 2u);
  EXPECT_EQ(lost_, UINT64_MAX);
}

TEST_F(Capture, UsesLastStatistics) {
  write(section() + interface() + interface() + statistics(0, 7) + statistics(0, 9) +
        statistics(1, 4));
  read();
  EXPECT_EQ(fault_, "");
  EXPECT_EQ(lost_, 13u);
}

TEST_F(Capture, IgnoresStatisticsOfOtherTraffic) {
  write(section() + interface(1) + statistics(0, 7));
  read();
  EXPECT_EQ(fault_, "");
  EXPECT_EQ(lost_, 0u);
}

TEST_F(Capture, CountsOtherPackets) {
  write(section() + interface() + block(3, numbers(4u, 1u)) + block(2, std::string(24, '\0')) +
        packet(1, 36));
  EXPECT_EQ(read().size(), 1u);
  EXPECT_EQ(others_, 2u);
}

TEST_F(Capture, ReportsTruncatedPackets) {
  write(section() + interface() + packet(1, 36) + packet(1, 100));
  CaptureReader reader(path_);
  EXPECT_EQ(reader.next()->cutOff, 0u);
  EXPECT_EQ(reader.next()->cutOff, 64u);
}

TEST_F(Capture, ReportsSystemErrors) {
  EXPECT_THROW(CaptureReader{testing::TempDir()}, Failure);
  CaptureReader reader("/proc/self/mem");  // can be opened; its first byte cannot be read
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.fault(), "byte 0: Input/output error");
  try {
    reader.throwFault();
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.cause(), Cause::System);
  }
}

// The schema of l2vpn_sync_stp in a version that had only its first `slots` slots.
Json olderSchema(size_t slots) {
  Json document = schemaDocument({&messageNamed("l2vpn_sync_stp"), 1});
  Json& record = document["records"].back();
  Json kept = Json::array();
  for (size_t index = 0; index < slots; ++index) {
    kept.push_back(record["slots"][index]);
  }
  record["slots"] = kept;
  record["size"] = 4 * slots;
  return document;
}

std::string lineOf(const Table& table) {
  Text text;
  writeTable(text, table);
  return std::string(text.view());
}

TEST_F(Capture, DescribesEachMessageOnce) {
  {
    CaptureWriter writer(path_);
    for (int round = 0; round < 3; ++round) {
      for (const char* name : {"l2vpn_sync_stp", "l2vpn_sync_vpls_ac"}) {
        writer.write({1, 7, 8, messageNamed(name).id(), 0, {}});
      }
      writer.write({1, 7, 8, 9, 0, {}});
    }
  }
  const std::string contents = readAll(path_);
  size_t documents = 0;
  for (size_t at = 0; (at = contents.find(R"({"format":1)", at)) != std::string::npos; ++at) {
    ++documents;
  }
  EXPECT_EQ(documents, 2u);
  CaptureReader reader(path_);
  size_t tables = 0;
  while (const auto table = reader.next()) {
    EXPECT_EQ(table->message, nullptr) << "as this program knows it";
    ++tables;
  }
  EXPECT_EQ(tables, 9u);
  EXPECT_EQ(reader.otherPackets(), 0u);
  EXPECT_TRUE(reader.schemaNotes().empty());
}

TEST_F(Capture, IsReadByItsOwnSchema) {
  const LoadedSchema old(olderSchema(2));
  const KnownMessage& message = old.messages().front();
  OwnedRecord record(message);
  storeAs<uint32_t>(record.data(), 5);
  storeAs<uint32_t>(record.data() + 4, 6);
  const Bytes bytes = encodeFixed(record);
  {
    CaptureWriter writer(path_);
    writer.write({1, 7, 8, message.id(), 0, bytes, 0, 0, 0, &message});
  }
  CaptureReader reader(path_);
  Statistics statistics;
  auto table = reader.next();
  ASSERT_TRUE(table);
  ASSERT_NE(table->message, nullptr);
  EXPECT_EQ(fingerprint(*table->message->message), fingerprint(*message.message));
  statistics.add(*table);
  EXPECT_EQ(statistics.all.rejected, 0u);
  EXPECT_NE(lineOf(*table).find(R"("record":{"f0":5,"f1":6}})"), std::string::npos)
      << lineOf(*table);
  ASSERT_EQ(reader.schemaNotes().size(), 1u);
  EXPECT_EQ(
      reader.schemaNotes()[0],
      "l2vpn_sync_stp: recorded by another schema, shown by it; this version: compatible with "
      "losses (f2: the writer does not send it, it is read as absent, ...)");
  // The next section does not have the schema.
  const std::string recorded = readAll(path_);
  write(recorded + recorded.substr(0, recorded.find("MESH") - 8));
  CaptureReader both(path_);
  const auto kept = both.next();
  ASSERT_TRUE(kept);
  EXPECT_FALSE(both.next());
  EXPECT_EQ(kept->message->name, "l2vpn_sync_stp") << "a kept table loses its message";
}

// The disk is full in the middle of a table.
TEST_F(Capture, EndsWithAWholeTableOnAFullDisk) {
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  const rlimit small{3001, limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  uint64_t passed = 0;
  {
    CaptureWriter writer(path_);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    for (int round = 0; round < 100; ++round) {
      writer.write({1, 7, 8, 9, 0, {}});
    }
    EXPECT_THROW(writer.flush(), Failure);
    passed = writer.tables();
  }
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(read().size(), passed);
  EXPECT_EQ(fault_, "");
  EXPECT_GT(passed, 30u);
  EXPECT_LT(passed, 50u);
}

TEST_F(Capture, IgnoresDamagedSchemas) {
  writeThree();
  const std::string whole = readAll(path_);
  const size_t begin = whole.find("MESH");
  const size_t end = whole.rfind("\"slots\"");
  size_t noted = 0;
  for (size_t at = begin; at < end; at += 3) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x11);
    write(damaged);
    CaptureReader reader(path_);
    size_t tables = 0;
    while (const auto table = reader.next()) {
      EXPECT_EQ(table->message, nullptr) << at;
      ++tables;
    }
    EXPECT_EQ(tables, 3u);
    EXPECT_EQ(reader.fault(), "");
    noted += reader.schemaNotes().size();
  }
  EXPECT_GT(noted, 50u);
}

}  // namespace
}  // namespace inspect
