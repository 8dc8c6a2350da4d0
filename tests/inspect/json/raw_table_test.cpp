// Tables of unknown messages: their structure, and the messages that fit them.

#include "inspect/json/raw_table.hpp"

#include <gtest/gtest.h>

#include "inspect/messages/codec.hpp"
#include "inspect/reader/identification.hpp"
#include "tests/inspect/bytes/failure_of.hpp"
#include "tests/inspect/reader/hostile.hpp"

namespace inspect {
namespace {

std::string rawFailureOf(const Bytes& bytes) {
  return failureOf([&] { rawTable(bytes); });
}

// The vtable at 4, the table at 12: slots 0 and 1, of which only the second is there.
Bytes smallTable() {
  Bytes bytes;
  put<uint32_t>(bytes, 12);
  putAll<uint16_t>(bytes, {8, 10, 0, 4});
  putAll<uint32_t>(bytes, {8, 7});
  return bytes;
}

TEST(RawTable, HasHeadAndPresentSlots) {
  EXPECT_EQ(rawTable(smallTable()).dump(),
            R"({"length":20,"table":12,"vtable":4,"vtableLength":8,"tableLength":10,)"
            R"("slots":[{"slot":1,"entry":4,"position":16}]})");
}

TEST(RawTable, AcceptsTheSmallestTable) {
  Bytes bytes;
  putAll<uint32_t>(bytes, {4, 0});  // the vtable is the table itself
  EXPECT_EQ(rawTable(bytes)["vtableLength"], 0);
  storeAs<uint16_t>(bytes.data() + 4, 4);
  bytes.resize(12);
  storeAs<uint32_t>(bytes.data(), 8);
  storeAs<uint32_t>(bytes.data() + 8, 4);  // the vtable at 4, of 4 bytes, before the last place
  EXPECT_EQ(rawTable(bytes)["vtable"], 4);
  EXPECT_TRUE(rawTable(bytes)["slots"].empty());
}

TEST(RawTable, RejectsWhatIsNoTable) {
  EXPECT_EQ(rawFailureOf(Bytes(7)), "byte 0: 7 bytes are too short for a table");
  for (const uint32_t table : {0u, 3u, 17u, UINT32_MAX}) {
    Bytes bytes = smallTable();
    storeAs(bytes.data(), table);
    EXPECT_EQ(rawFailureOf(bytes), "byte 0: the root points to a table at " +
                                       std::to_string(table) + ", outside the buffer");
  }
  for (const uint32_t vtable : {0u, 3u, 17u}) {
    Bytes bytes = smallTable();
    storeAs(bytes.data() + 12, 12 - vtable);
    EXPECT_EQ(rawFailureOf(bytes), "byte 12: the table's vtable is at " + std::to_string(vtable) +
                                       ", outside the buffer");
  }
  Bytes bytes = smallTable();
  storeAs<uint16_t>(bytes.data() + 4, 16);
  EXPECT_EQ(rawFailureOf(bytes), "");
  storeAs<uint16_t>(bytes.data() + 4, 17);
  EXPECT_EQ(rawFailureOf(bytes), "byte 4: a vtable of 17 bytes passes the end");
}

std::string couldBe(const Bytes& bytes) {
  std::string text;
  const Json json = identification(bytes);
  for (const Json& candidate : json["couldBe"]) {
    text +=
        candidate["message"].get<std::string>() + ": " + candidate["fit"].get<std::string>() + '\n';
  }
  return text;
}

// One vpls_ac with every slot; its wrapper has two slots, as some other records do.
TEST(Identification, NamesTheBestFits) {
  OwnedRecord circuit(messageNamed("l2vpn_sync_vpls_ac"));
  const Bytes exact = encodeCompact(circuit);
  EXPECT_NE(couldBe(exact).find("l2vpn_sync_vpls_ac: exact\n"), std::string::npos)
      << couldBe(exact);
  EXPECT_EQ(couldBe(exact).find("same slots"), std::string::npos) << couldBe(exact);

  Bytes padded = exact;
  padded.push_back(0);
  EXPECT_NE(couldBe(padded).find("l2vpn_sync_vpls_ac: same slots\n"), std::string::npos)
      << couldBe(padded);
  EXPECT_EQ(couldBe(padded).find("exact"), std::string::npos) << couldBe(padded);

  Bytes damaged = encodeCompact(OwnedRecord(messageNamed("l2vpn_sync_vpls_ac_update")));
  storeAs<uint32_t>(damaged.data() + 16, 1000);  // the word of the record
  EXPECT_NE(couldBe(damaged).find("l2vpn_sync_vpls_ac_update: damaged\n"), std::string::npos)
      << couldBe(damaged);

  // More slots than any message has.
  Bytes wide;
  put<uint32_t>(wide, 4 + 2 * 102);
  putAll<uint16_t>(wide, {2 * 102, 4});
  wide.resize(4 + 2 * 102);
  put<uint32_t>(wide, 2 * 102);
  const std::vector<Candidate> readers = candidatesFor(wide);
  EXPECT_EQ(readers.back().group, 3u);
  EXPECT_TRUE(std::ranges::all_of(
      readers, [](const Candidate& candidate) { return candidate.fit == Fit::Reads; }));
}

TEST(Identification, ChoosesTheFirstOfTheBest) {
  const Bytes key = encodeCompact(
      fromJson(messageNamed("dbginfo_key_l2vpn"), parseJson(R"({"f0": 1, "f3": "616263"})")));
  const std::vector<Candidate> candidates = candidatesFor(key);
  ASSERT_EQ(candidates.size(), 1u);
  const Choice choice = chooseMessage("", key);
  EXPECT_EQ(&choice.message, candidates.front().message);
  EXPECT_EQ(choice.note, "taken for dbginfo_key_l2vpn, the only message that is encoded like this");
  // A name is taken as it is.
  EXPECT_EQ(chooseMessage("l2vpn_sync_stp", key).message.name, "l2vpn_sync_stp");
  EXPECT_EQ(chooseMessage("l2vpn_sync_stp", key).note, "");
}

}  // namespace
}  // namespace inspect
