// Schema documents are read as what they were written from, and compared slot by slot and byte by
// byte.

#include "inspect/schema/compatibility.hpp"

#include <gtest/gtest.h>

#include <random>

#include "inspect/bytes/failure.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/schema/document.hpp"
#include "inspect/schema/facts.hpp"
#include "inspect/schema/samples.hpp"

namespace inspect {
namespace {

Json documentOf(const char* name) {
  return schemaDocument({&messageNamed(name), 1});
}

// Gives the slots of the last record of a document their places in C.
Json laidOut(Json document) {
  uint64_t end = 0;
  uint64_t widest = 1;
  Json& record = document["records"].back();
  for (Json& slot : record["slots"]) {
    const uint64_t alignment = slot["kind"] == "scalar"  ? slot["size"].get<uint64_t>()
                               : slot["kind"] == "array" ? 1
                                                         : 8;
    if (slot["kind"] == "bytes") {
      slot["countOffset"] = (end + 3) / 4 * 4;
      end = slot["countOffset"].get<uint64_t>() + 4;
    }
    slot["recordOffset"] = (end + alignment - 1) / alignment * alignment;
    end = slot["recordOffset"].get<uint64_t>() +
          (slot["kind"] == "bytes" ? 8 : slot["size"].get<uint64_t>());
    widest = std::max(widest, alignment);
  }
  record["size"] = (end + widest - 1) / widest * widest;
  return document;
}

// A document whose message, l2vpn_sync_stp of four u32, has these slots.
Json withSlots(const std::vector<std::pair<const char*, uint32_t>>& slots) {
  Json document = documentOf("l2vpn_sync_stp");
  Json list = Json::array();
  for (const auto& [kind, size] : slots) {
    list.push_back({{"name", "f" + std::to_string(list.size())}, {"kind", kind}, {"size", size}});
    if (std::string_view(kind) == "bytes") {
      document["messages"][0]["sent"] = "compact";
    }
  }
  document["records"].back()["slots"] = std::move(list);
  return laidOut(std::move(document));
}

MessageCompatibility compared(const Json& old, const Json& recent) {
  const LoadedSchema one(old);
  const LoadedSchema other(recent);
  const auto found = compatibility(one, other);
  EXPECT_EQ(found.size(), 1u);
  return found.front();
}

std::string textOf(const Direction& direction) {
  std::string text = nameOf(direction.verdict);
  for (const std::string& reason : direction.reasons) {
    text += "; " + reason;
  }
  return text;
}

const Json fourWords = withSlots({{"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"scalar", 4}});

TEST(SchemaDocument, IsReadAsWhatItWasWrittenFrom) {
  const LoadedSchema loaded(parseJson(schemaDocument(messages()).dump()));
  ASSERT_EQ(loaded.messages().size(), messages().size());
  for (const KnownMessage& message : messages()) {
    SCOPED_TRACE(message.name);
    const KnownMessage* const same = loaded.find(message.id());
    ASSERT_NE(same, nullptr);
    EXPECT_EQ(same, loaded.find(message.name));
    EXPECT_EQ(same->service, message.service);
    EXPECT_EQ(same->message->policy, message.message->policy);
    EXPECT_EQ(fingerprint(*same->message), fingerprint(*message.message));
    EXPECT_TRUE(mesh::wire::haveSameLayout(same->schema(), message.schema()));
    for (size_t number = 0; number < 8; ++number) {
      const OwnedRecord record = sampleOf(message, number);
      const OwnedRecord other = sampleOf(*same, number);
      EXPECT_EQ(encodeCompact(record), encodeCompact(other));
      EXPECT_EQ(encode(record, Form::AsSent), encode(other, Form::AsSent));
      EXPECT_EQ(toJson(message.schema(), decode(message, encode(record, Form::AsSent)).data()),
                toJson(same->schema(), decode(*same, encode(record, Form::AsSent)).data()));
    }
  }
}

TEST(SchemaDocument, FailsForWhatIsNone) {
  const auto fails = [](const Json& document) {
    EXPECT_THROW(LoadedSchema{document}, Failure) << document.dump().substr(0, 200);
  };
  fails(Json());
  fails({{"format", 2}});
  Json document = fourWords;
  document["records"].back()["slots"][1]["recordOffset"] = 5;
  fails(document);
  document = fourWords;
  document["records"].back()["slots"][1]["size"] = 3;
  fails(document);
  document = documentOf("l2vpn_sync_stp_update");
  std::swap(document["records"][0], document["records"][1]);  // the holder before what it holds
  fails(document);
  document = fourWords;
  document["messages"].push_back(document["messages"][0]);
  fails(document);
}

// One byte of a document is another: it fails, or it is compared.
TEST(SchemaDocument, SurvivesDamage) {
  const std::string text = documentOf("l2vpn_cfg_query_dfx_rec").dump();
  const LoadedSchema sound(parseJson(text));
  std::mt19937 random(1);
  int loaded = 0;
  for (int round = 0; round < 300; ++round) {
    std::string damaged = text;
    damaged[random() % (text.find("\"jsonSchema\""))] = "0129,\"{}[]a"[random() % 11];
    try {
      const LoadedSchema other(parseJson(damaged));
      compatibility(sound, other);
      compatibility(other, sound);
      ++loaded;
    } catch (const Failure&) {
      continue;
    }
  }
  EXPECT_GT(loaded, 0);
}

TEST(Compatibility, OfASchemaWithItselfIsSame) {
  const LoadedSchema one(schemaDocument(messages()));
  const LoadedSchema other(schemaDocument(messages()));
  const auto found = compatibility(one, other);
  EXPECT_EQ(found.size(), messages().size());
  for (const MessageCompatibility& message : found) {
    EXPECT_EQ(textOf(message.oldReader), "same") << message.name;
    EXPECT_EQ(textOf(message.newReader), "same") << message.name;
    EXPECT_GT(message.oldReader.samples, 40u);
  }
}

TEST(Compatibility, OfAnAddedSlot) {
  const auto found = compared(
      fourWords,
      withSlots({{"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"array", 6}}));
  EXPECT_EQ(textOf(found.oldReader), "compatible with losses; f4: the reader does not know it");
  EXPECT_EQ(textOf(found.newReader),
            "compatible with losses; f4: the writer does not send it, it is read as absent");
}

TEST(Compatibility, OfAScalarOfAnotherWidth) {
  const auto found =
      compared(fourWords, withSlots({{"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"scalar", 8}}));
  EXPECT_EQ(textOf(found.oldReader),
            "compatible with losses; f3: the reader takes the lower half or less, u32 of u64");
  EXPECT_EQ(textOf(found.newReader),
            "incompatible; f3: the reader takes u64, beyond the writer's u32");
}

TEST(Compatibility, OfByteStrings) {
  const Json array = withSlots({{"scalar", 4}, {"array", 4}});
  const Json longer = withSlots({{"scalar", 4}, {"array", 5}});
  const Json bytes = withSlots({{"scalar", 4}, {"bytes", 1}});
  EXPECT_EQ(textOf(compared(array, longer).newReader),
            "incompatible; f1: the reader takes bytes[5] alone, the writer sends bytes[4]");
  const auto found = compared(array, bytes);
  EXPECT_EQ(textOf(found.newReader), "same");
  EXPECT_EQ(textOf(found.oldReader),
            "incompatible; f1: the reader takes bytes[4] alone, the writer sends bytes");
}

TEST(Compatibility, OfAnotherKind) {
  const auto found =
      compared(fourWords, withSlots({{"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"array", 4}}));
  EXPECT_EQ(textOf(found.newReader),
            "incompatible; f3: the reader takes bytes[4], the writer sends u32");
  EXPECT_EQ(found.oldReader.verdict, Compatibility::Incompatible);
}

TEST(Compatibility, OfAnotherIdentifier) {
  Json other = fourWords;
  other["messages"][0]["identifier"] = "0x00000001";
  EXPECT_EQ(compared(fourWords, other).oldReader.verdict, Compatibility::Incompatible);
}

TEST(Compatibility, OfMessagesOfOneSchema) {
  Json both = schemaDocument(messages());
  Json fewer = both;
  fewer["messages"].erase(0);
  const LoadedSchema all(both);
  const LoadedSchema some(fewer);
  EXPECT_EQ(textOf(compatibility(all, some).front().newReader),
            "incompatible; the new schema no longer has it");
  EXPECT_EQ(textOf(compatibility(some, all).back().oldReader),
            "compatible with losses; the old schema does not know it");
}

// What compare() calls incompatible shows in bytes, and nothing else does.
TEST(Compatibility, IsConfirmedByBytes) {
  const std::vector<Json> documents = {
      fourWords,
      withSlots({{"scalar", 4}, {"scalar", 4}, {"scalar", 4}}),
      withSlots({{"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"scalar", 8}}),
      withSlots({{"scalar", 4}, {"scalar", 2}, {"scalar", 1}, {"scalar", 4}}),
      withSlots({{"scalar", 4}, {"array", 4}}),
      withSlots({{"scalar", 4}, {"array", 5}, {"scalar", 8}}),
      withSlots({{"scalar", 4}, {"bytes", 1}, {"scalar", 8}, {"array", 300}}),
  };
  for (const Json& one : documents) {
    for (const Json& other : documents) {
      const LoadedSchema writers(one);
      const LoadedSchema readers(other);
      const KnownMessage& writer = writers.messages().front();
      const KnownMessage& reader = readers.messages().front();
      const Direction said = compare(writer.schema(), reader.schema());
      Direction shown;
      confirm(writer, reader, shown);
      EXPECT_EQ(shown.verdict == Compatibility::Incompatible,
                said.verdict == Compatibility::Incompatible)
          << textOf(said) << "\n"
          << textOf(shown) << "\n"
          << wireText(*writer.message) << " read as " << wireText(*reader.message);
    }
  }
}

TEST(Compatibility, ReadsCapturedTables) {
  const LoadedSchema old(fourWords);
  const LoadedSchema longer(
      withSlots({{"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"scalar", 4}, {"array", 6}}));
  const LoadedSchema other(withSlots({{"array", 4}, {"scalar", 4}}));
  const KnownMessage& message = old.messages().front();
  const Bytes bytes = encode(sampleOf(message, 1), Form::AsSent);
  const Table table{0, 1, 2, message.id(), 0, bytes};
  EXPECT_EQ(differenceOn(table, old, longer), "");
  EXPECT_EQ(differenceOn(table, old, other), "only the old schema takes this l2vpn_sync_stp");
  EXPECT_EQ(differenceOn({0, 1, 2, 1, 0, bytes}, old, other), "");
}

}  // namespace
}  // namespace inspect
