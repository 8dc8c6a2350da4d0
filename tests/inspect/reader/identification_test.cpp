// Bytes of unknown name are told by their layout, although they are damaged.

#include "inspect/reader/identification.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "inspect/bytes/failure.hpp"
#include "inspect/bytes/hex.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/table_reader.hpp"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"

namespace inspect {
namespace {

Bytes randomMessage(const KnownMessage& message, std::mt19937_64& random) {
  const oracle::Description& type = oracle::descriptionOf(std::string(message.name));
  const auto density = static_cast<oracle::Density>(random() % 3);
  // Byte strings of length 0 come without a pointer.
  const oracle::RecordImage image(type,
                                  oracle::asReceived(oracle::randomValue(type, random, density)));
  OwnedRecord record(message);
  std::memcpy(record.data(), image.data(), message.schema().size);
  return random() % 2 == 0 ? encodeCompact(record) : encode(record, Form::AsSent);
}

bool isReadable(const Bytes& bytes) {
  try {
    rawTable(bytes);
    return true;
  } catch (const Failure& failure) {
    EXPECT_STRNE(failure.what(), "");
    return false;
  }
}

// The group in which the message, or one of its layout, is named; 0 if it is not.
size_t groupOf(const KnownMessage& message, const std::vector<Candidate>& candidates) {
  const auto found = std::ranges::find_if(candidates, [&](const Candidate& candidate) {
    return mesh::wire::haveSameLayout(candidate.message->schema(), message.schema());
  });
  return found == candidates.end() ? 0 : found->group;
}

// What writers give away about a message's layout: each zero of it counts 1, each other byte 6.
int likenessOfLayout(const KnownMessage& message, const Bytes& bytes) {
  int likeness = 0;
  for (const Range& range : readTable(message, bytes).ranges) {
    const bool isOfArray = range.part == Part::Length && range.path.starts_with("f1[");
    const bool isLayout = range.part == Part::Root || range.part == Part::Head ||
                          range.part == Part::Entry || range.part == Part::Word || isOfArray;
    for (uint32_t at = range.at; isLayout && at < range.at + range.size; ++at) {
      likeness += bytes[at] == 0 ? 1 : 6;
    }
  }
  return likeness;
}

// Of items and absent fields too, and nothing behind the last item.
TEST(Identification, PredictsTheWholeLayout) {
  for (const auto& [name, json] :
       {std::pair("dbginfo_key_l2vpn", "{}"),
        std::pair("dbginfo_key_l2vpn", R"({"f0": 1, "f3": "01"})"),
        std::pair("l2vpn_cfg_query_dfx_rec", R"({"f1": [{"f1": 7}, {"f1": 8}]})")}) {
    const KnownMessage& message = messageNamed(name);
    const Bytes bytes = encodeCompact(fromJson(message, parseJson(json)));
    const std::vector<Candidate> candidates = candidatesFor(bytes);
    const auto found = std::ranges::find(candidates, &message, &Candidate::message);
    ASSERT_NE(found, candidates.end()) << name;
    EXPECT_EQ(found->likeness, likenessOfLayout(message, bytes)) << name << ' ' << json;
  }
}

TEST(Identification, NamesEncodedMessages) {
  std::mt19937_64 random(1);
  for (const KnownMessage& message : messages()) {
    for (int round = 0; round < 12; ++round) {
      const Bytes bytes = randomMessage(message, random);
      const std::vector<Candidate> candidates = candidatesFor(bytes);
      const auto found = std::ranges::find(candidates, &message, &Candidate::message);
      ASSERT_NE(found, candidates.end()) << message.name << ' ' << toHex(bytes);
      EXPECT_EQ(found->fit, Fit::Exact) << message.name;
    }
  }
}

// One to four injuries: bits, bytes, words, lengths, truncations, insertions.
TEST(Identification, NamesDamagedMessages) {
  constexpr size_t count = 1000;
  std::mt19937_64 random(17);
  size_t damaged = 0;
  size_t unreadable = 0;
  std::map<size_t, size_t> byGroup;
  for (size_t number = 0; damaged < count; ++number) {
    const KnownMessage& message = messages()[number % messages().size()];
    const Bytes sound = randomMessage(message, random);
    const Bytes bytes = oracle::mutate(sound, random);
    if (bytes == sound) {
      continue;
    }
    ++damaged;
    if (!isReadable(bytes)) {
      EXPECT_THROW(candidatesFor(bytes), Failure);
      ++unreadable;
      continue;
    }
    ++byGroup[groupOf(message, candidatesFor(bytes))];
  }
  const size_t readable = count - unreadable;
  const size_t first = byGroup[1];
  const size_t firstThree = first + byGroup[2] + byGroup[3];
  std::cout << readable << " readable, " << first << " named first, " << firstThree
            << " among the first three layouts\n";
  EXPECT_GE(100 * first, 80 * readable);
  EXPECT_GE(100 * firstThree, 95 * readable);
  EXPECT_LT(unreadable, count / 2);
}

TEST(Identification, SaysWhatItChose) {
  std::mt19937_64 random(2);
  const KnownMessage& message = messageNamed("l2vpn_sync_vpls_ac");
  Bytes bytes = randomMessage(message, random);
  EXPECT_EQ(chooseMessage("l2vpn_sync_vpls_ac", bytes).note, "");
  EXPECT_NE(chooseMessage("", bytes).note.find("taken for "), std::string::npos);
  bytes.resize(bytes.size() - 5);
  EXPECT_NE(chooseMessage("", bytes).note.find("which fits best"), std::string::npos);
  bytes[0] = bytes[3] = 0xFF;
  EXPECT_THROW(chooseMessage("", bytes), Failure);
}

}  // namespace
}  // namespace inspect
