// What the explaining reader says: every range, every fault, every note.

#include <gtest/gtest.h>

#include "inspect/bytes/memory_limit.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/reader/table_reader.hpp"
#include "tests/inspect/reader/hostile.hpp"

namespace inspect {
namespace {

const KnownMessage& key() {
  return messageNamed("dbginfo_key_l2vpn");
}

using Lines = std::vector<std::string>;

Lines rangesOf(const KnownMessage& message, const Bytes& bytes) {
  Lines lines;
  for (const Range& range : readTable(message, bytes).ranges) {
    lines.push_back(std::to_string(range.at) + '+' + std::to_string(range.size) + ' ' + range.path +
                    ' ' + range.meaning + ": " + range.value +
                    (range.target != -1 ? " -> " + std::to_string(range.target) : ""));
  }
  return lines;
}

std::vector<Part> partsOf(const KnownMessage& message, const Bytes& bytes) {
  std::vector<Part> parts;
  for (const Range& range : readTable(message, bytes).ranges) {
    parts.push_back(range.part);
  }
  return parts;
}

Lines faultsOf(const KnownMessage& message, const Bytes& bytes) {
  Lines lines;
  for (const Fault& fault : judge(message, bytes).faults) {
    lines.push_back(faultText(fault));
  }
  return lines;
}

TEST(ReaderTexts, OfEveryRange) {
  const Bytes bytes =
      encodeCompact(fromJson(key(), parseJson(R"({"f0": 1, "f1": 300, "f3": "616263"})")));
  EXPECT_EQ(
      rangesOf(key(), bytes),
      (Lines{"0+4  root: table at 16 -> 16", "4+2  vtable: length: 12",
             "6+2  vtable: table length (unused): 19", "8+2 f0 entry of slot 0: 4: at 20 -> 20",
             "10+2 f1 entry of slot 1: 6: at 22 -> 22", "12+2 f2 entry of slot 2: 0: absent",
             "14+2 f3 entry of slot 3: 8: at 24 -> 24", "16+4  table: vtable offset: 12: at 4 -> 4",
             "20+2 f0 value: 1", "22+2 f1 value: 300 (0x12c)",
             "24+4 f3 offset word: 4: points to 28 -> 28", "28+4 f3 length: 3",
             "32+3 f3 contents: \"abc\""}));
  EXPECT_EQ(partsOf(key(), bytes),
            (std::vector{Part::Root, Part::Head, Part::Head, Part::Entry, Part::Entry, Part::Entry,
                         Part::Entry, Part::Head, Part::Scalar, Part::Scalar, Part::Word,
                         Part::Length, Part::Contents}));
}

// Six slots and a half, of which the last two and a half are unknown.
TEST(ReaderTexts, OfWhatIsNotRead) {
  Bytes bytes;
  put<uint32_t>(bytes, 22);
  putAll<uint16_t>(bytes, {17, 6, 4, 0, 0, 0, 99, 0, 0});
  put<uint32_t>(bytes, 18);
  put<uint16_t>(bytes, 9);
  put<uint8_t>(bytes, 0x55);
  const Lines expected{"0+4  root: table at 22 -> 22",
                       "4+2  vtable: length: 17",
                       "6+2  vtable: table length (unused): 6",
                       "8+2 f0 entry of slot 0: 4: at 26 -> 26",
                       "10+2 f1 entry of slot 1: 0: absent",
                       "12+2 f2 entry of slot 2: 0: absent",
                       "14+2 f3 entry of slot 3: 0: absent",
                       "16+4  entries of slots 4 to 5: unknown to this library",
                       "20+1  vtable: half an entry: ",
                       "21+1  padding: ",
                       "22+4  table: vtable offset: 18: at 4 -> 4",
                       "26+2 f0 value: 9",
                       "28+1  not read: "};
  EXPECT_EQ(rangesOf(key(), bytes), expected);
  EXPECT_EQ(partsOf(key(), bytes),
            (std::vector{Part::Root, Part::Head, Part::Head, Part::Entry, Part::Entry, Part::Entry,
                         Part::Entry, Part::Unknown, Part::Unknown, Part::Padding, Part::Head,
                         Part::Scalar, Part::Unread}));
  storeAs<uint16_t>(bytes.data() + 4, 14);
  EXPECT_EQ(rangesOf(key(), bytes)[7], "16+2  entry of slot 4: unknown to this library");
}

TEST(ReaderTexts, OfItemsAndCounts) {
  const KnownMessage& list = messageNamed("l2vpn_cfg_query_dfx_rec");
  const Lines lines = rangesOf(list, itemsOfOneVtable(2, 4));
  EXPECT_NE(std::ranges::find(lines, "20+4 f1 count: 2"), lines.end());
  EXPECT_NE(std::ranges::find(lines, "24+4 f1[0] offset word: 8: points to 32 -> 32"), lines.end());
  EXPECT_NE(std::ranges::find(lines, "28+4 f1[1] offset word: 8: points to 36 -> 36"), lines.end());
  EXPECT_NE(std::ranges::find(lines, "36+4 f1[1] table: vtable offset: -4: at 40 -> 40"),
            lines.end());
}

// All fields at one place.
TEST(ReaderTexts, OfBytesThatAreReadAgain) {
  Bytes bytes;
  put<uint32_t>(bytes, 12);
  putAll<uint16_t>(bytes, {8, 6, 4, 4});
  put<uint32_t>(bytes, 8);
  put<uint16_t>(bytes, 9);
  EXPECT_EQ(readTable(key(), bytes).notes, (Lines{"byte 16 is read a second time, as f1 value"}));

  const KnownMessage& wide = messageNamed("dbginfo_cmd_ipc_l2vpn");
  bytes.clear();
  put<uint32_t>(bytes, 34);
  putAll<uint16_t>(bytes, {30, 8});
  for (int slot = 0; slot < 13; ++slot) {
    put<uint16_t>(bytes, 4);
  }
  putAll<uint32_t>(bytes, {30, 9});
  const Lines notes = readTable(wide, bytes).notes;
  ASSERT_EQ(notes.size(), 6u);
  EXPECT_EQ(notes[5], "7 more ranges are read a second time");
}

TEST(ReaderTexts, OfTablesThatAreReadAgain) {
  const KnownMessage& list = messageNamed("l2vpn_cfg_query_dfx_rec");
  Bytes bytes = itemsOfOneVtable(2, 2);
  bytes.resize(bytes.size() + 2);
  storeAs<uint32_t>(bytes.data() + 28, 4);  // the second item's word: to the first table
  EXPECT_EQ(readTable(list, bytes).notes,
            (Lines{"f1[0]: a vtable of 2 bytes has no slots",
                   "f1[1] points to a table that was read before, at 32"}));
}

TEST(ReaderTexts, OfEveryFaultOfAHead) {
  Bytes bytes;
  put<uint32_t>(bytes, 12);
  putAll<uint16_t>(bytes, {8, 6, 0, 0});
  put<uint32_t>(bytes, 8);
  EXPECT_EQ(faultsOf(key(), bytes), Lines{});
  for (const uint32_t table : {0u, 3u, 13u, UINT32_MAX}) {
    storeAs(bytes.data(), table);
    EXPECT_EQ(faultsOf(key(), bytes),
              Lines{"byte 0: points to a table at " + std::to_string(table) + ", not in 4 to 12"});
  }
  storeAs<uint32_t>(bytes.data(), 12);
  for (const uint32_t vtable : {0u, 3u, 13u, UINT32_MAX}) {
    storeAs(bytes.data() + 12, 12 - vtable);
    EXPECT_EQ(faultsOf(key(), bytes), Lines{"byte 12: points to a vtable at " +
                                            std::to_string(vtable) + ", not in 4 to 12"});
  }
  storeAs<uint32_t>(bytes.data() + 12, 8);
  storeAs<uint16_t>(bytes.data() + 4, 13);
  EXPECT_EQ(faultsOf(key(), bytes), Lines{"byte 4: a vtable of 13 bytes, but only 12 are left"});
  EXPECT_EQ(faultsOf(key(), Bytes(3)), Lines{"byte 0: a message cannot have 3 bytes"});
}

TEST(ReaderTexts, OfEveryFaultOfAValue) {
  const auto withEntry = [](size_t slot, uint16_t entry, std::initializer_list<uint32_t> words) {
    Bytes bytes;
    put<uint32_t>(bytes, 16);
    putAll<uint16_t>(bytes, {12, 4, 0, 0, 0, 0});
    storeAs(bytes.data() + 8 + 2 * slot, entry);
    put<uint32_t>(bytes, 12);
    putAll<uint32_t>(bytes, words);
    return bytes;
  };
  EXPECT_EQ(faultsOf(key(), withEntry(0, 2, {})), Lines{});
  EXPECT_EQ(faultsOf(key(), withEntry(0, 3, {})),
            Lines{"byte 8, f0: its 2 bytes at 19 pass the end of a buffer of 20 bytes"});
  EXPECT_EQ(faultsOf(key(), withEntry(3, 4, {})),
            Lines{"byte 14, f3: its offset word at 20 passes the end of a buffer of 20 bytes"});
  EXPECT_EQ(faultsOf(key(), withEntry(3, 4, {1})),
            Lines{"byte 20, f3: points to a length at 21, past the end of a buffer of 24 bytes"});
  EXPECT_EQ(faultsOf(key(), withEntry(3, 4, {UINT32_MAX})),
            Lines{"byte 20, f3: points to 4294967315, beyond 32 bits"});
  EXPECT_EQ(faultsOf(key(), withEntry(3, 4, {4, 1})),
            Lines{"byte 24, f3: 1 bytes, but only 0 are left"});
  EXPECT_EQ(faultsOf(key(), withEntry(3, 4, {4, 0})), Lines{});
}

TEST(ReaderTexts, OfEveryFaultOfAList) {
  const KnownMessage& list = messageNamed("l2vpn_cfg_query_dfx_rec");
  Bytes bytes = listOf(0);
  EXPECT_EQ(faultsOf(list, bytes), Lines{});
  storeAs<uint32_t>(bytes.data() + 16, 5);
  EXPECT_EQ(faultsOf(list, bytes),
            Lines{"byte 16, f1: points to a count at 21, past the end of a buffer of 24 bytes"});
  EXPECT_EQ(faultsOf(list, listOf(1)),
            Lines{"byte 20, f1: 1 items, whose offset words pass the end of a buffer of 24 bytes"});
  bytes = listOf(1);
  put<uint32_t>(bytes, 5);
  EXPECT_EQ(faultsOf(list, bytes),
            Lines{"byte 24, f1[0]: points to a table at 29, not in 4 to 24"});
  // 4 GiB are 259,170 items and a part of one.
  bytes = listOf(259'171);
  bytes.resize(bytes.size() + 4 * 259'171);
  EXPECT_EQ(faultsOf(list, bytes),
            Lines{"byte 20, f1: 259171 items of 16572 bytes exceed 32 bits"});
}

TEST(ReaderTexts, OfNumbersAndCounts) {
  EXPECT_EQ(numberText(9), "9");
  EXPECT_EQ(numberText(10), "10 (0xa)");
  EXPECT_EQ(numberText(UINT64_MAX), "18446744073709551615 (0xffffffffffffffff)");
  Verdict verdict;
  EXPECT_EQ(faultCountText(verdict), "no fault");
  verdict.addFault({4, 2, "f1", "a reason", true});
  EXPECT_EQ(faultCountText(verdict), "1 fault");
  EXPECT_TRUE(verdict.isAccepted());
  EXPECT_EQ(faultText(verdict.faults[0]),
            "byte 4, f1: a reason (receivers accept the message, with what they read before)");
  verdict.addFault({4, 2, "", "another", false});
  EXPECT_EQ(faultCountText(verdict), "2 faults");
  EXPECT_EQ(faultText(verdict.faults[1]), "byte 4: another");
  EXPECT_FALSE(verdict.isAccepted());
}

// The one that decides is kept, however many came before.
TEST(ReaderTexts, KeepTheFaultThatRejects) {
  Verdict verdict;
  for (uint32_t fault = 0; fault < 1000; ++fault) {
    verdict.addFault({fault, 1, "", "tolerated", true});
  }
  EXPECT_FALSE(verdict.hasMoreFaults);
  verdict.addFault({1000, 1, "", "tolerated", true});
  EXPECT_TRUE(verdict.hasMoreFaults);
  EXPECT_EQ(verdict.faults.size(), 1000u);
  verdict.addFault({1001, 1, "", "rejects", false});
  verdict.addFault({1002, 1, "", "rejects too", false});
  ASSERT_EQ(verdict.faults.size(), 1001u);
  EXPECT_EQ(verdict.faults.back().text, "rejects");
}

TEST(ReaderTexts, KeepAHundredNotes) {
  const KnownMessage& list = messageNamed("l2vpn_cfg_query_dfx_rec");
  // Each item notes that its vtable has no slots.
  const auto noteCount = [&](uint32_t items) {
    Bytes bytes = itemsOfOneVtable(items, 2);
    bytes.resize(bytes.size() + 2);
    return readTable(list, bytes).notes.size();
  };
  EXPECT_EQ(noteCount(10), 10u + 5 + 1) << "and that the shared lengths are read again";
  EXPECT_EQ(noteCount(100), 100u + 5 + 1);
  EXPECT_EQ(noteCount(101), 100u + 5 + 1);
}

}  // namespace
}  // namespace inspect
