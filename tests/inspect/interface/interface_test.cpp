// The C interface: every message, every function, wrong parameters, hostile bytes, threads.

#include "mesh_l2vpn/inspect.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/exported.hpp"
#include "tests/inspect/reader/hostile.hpp"

namespace {

using inspect::Bytes;

const mesh_l2vpn_message* named(const char* name) {
  return mesh_l2vpn_message_by_name(name);
}

// What a function handed out, as text; its error text if it failed.
std::string taken(int result, char* text) {
  if (result != 0) {
    EXPECT_EQ(text, nullptr);
    return mesh_l2vpn_last_error();
  }
  std::string copy = text;
  mesh_l2vpn_free(text);
  return copy;
}

std::string toJson(const mesh_l2vpn_message* message, const Bytes& bytes) {
  char* json = nullptr;
  const int result = mesh_l2vpn_to_json(message, bytes.data(), bytes.size(), &json);
  return taken(result, json);
}

Bytes fromJson(const mesh_l2vpn_message* message, const std::string& json, mesh_l2vpn_form form) {
  uint8_t* data = nullptr;
  size_t size = 0;
  EXPECT_EQ(mesh_l2vpn_from_json(message, json.data(), json.size(), form, &data, &size), 0)
      << mesh_l2vpn_last_error();
  Bytes bytes(data, data + size);
  mesh_l2vpn_free(data);
  return bytes;
}

std::string explain(const mesh_l2vpn_message* message, const Bytes& bytes, mesh_l2vpn_view view) {
  char* text = nullptr;
  const int result = mesh_l2vpn_explain(message, bytes.data(), bytes.size(), view, &text);
  return taken(result, text);
}

TEST(Registry, HasEveryMessageInNameOrder) {
  ASSERT_EQ(mesh_l2vpn_message_count(), exported::allOperations().size());
  std::string before;
  for (size_t index = 0; index < mesh_l2vpn_message_count(); ++index) {
    const mesh_l2vpn_message* const message = mesh_l2vpn_message_at(index);
    const std::string name = mesh_l2vpn_message_name(message);
    EXPECT_LT(before, name);
    before = name;
    const exported::Operations* const operations = exported::operationsOf(name);
    ASSERT_NE(operations, nullptr);
    EXPECT_EQ(mesh_l2vpn_message_id(message), operations->id());
    EXPECT_EQ(mesh_l2vpn_message_record_size(message), operations->schema().size);
    EXPECT_EQ(mesh_l2vpn_message_by_id(operations->id()), message);
    EXPECT_EQ(named(name.c_str()), message);
  }
  EXPECT_EQ(mesh_l2vpn_message_at(mesh_l2vpn_message_count()), nullptr);
  EXPECT_EQ(named("l2vpn_sync"), nullptr);
  EXPECT_EQ(named(nullptr), nullptr);
  EXPECT_EQ(mesh_l2vpn_message_by_id(1), nullptr);
}

// Bytes as the exported operations write them, through every function and back.
TEST(Interface, CarriesEveryMessage) {
  for (const exported::Operations& operations : exported::allOperations()) {
    SCOPED_TRACE(operations.name);
    const mesh_l2vpn_message* const message = mesh_l2vpn_message_by_id(operations.id());
    const oracle::Description& type = oracle::descriptionOf(std::string(operations.name));
    std::mt19937_64 random(operations.id());
    for (int round = 0; round < 20; ++round) {
      const auto density = static_cast<oracle::Density>(round % 3);
      const oracle::RecordImage image(
          type, oracle::asReceived(oracle::randomValue(type, random, density)));
      uint32_t room = UINT32_MAX;
      ASSERT_EQ(operations.pack(image.data(), nullptr, &room), 0u);
      Bytes bytes(room);
      ASSERT_EQ(operations.pack(image.data(), bytes.data(), &room), 0u);

      EXPECT_EQ(mesh_l2vpn_verify(message, bytes.data(), bytes.size(), nullptr),
                MESH_L2VPN_ACCEPTED);
      char* text = nullptr;
      const int result = mesh_l2vpn_record_to_json(message, image.data(), &text);
      const std::string ofRecord = taken(result, text);
      const std::string json = toJson(message, bytes);
      EXPECT_EQ(json, ofRecord);
      EXPECT_EQ(fromJson(message, json, MESH_L2VPN_COMPACT), bytes);
      const Bytes sent = fromJson(message, json, MESH_L2VPN_AS_SENT);
      EXPECT_EQ(toJson(message, sent), json);

      std::vector<uint64_t> record((operations.schema().size + 7) / 8, UINT64_MAX);
      ASSERT_EQ(mesh_l2vpn_unpack(message, sent.data(), sent.size(), record.data()), 0);
      uint8_t* data = nullptr;
      size_t size = 0;
      ASSERT_EQ(mesh_l2vpn_pack(message, record.data(), MESH_L2VPN_COMPACT, &data, &size), 0);
      EXPECT_EQ(Bytes(data, data + size), bytes);
      mesh_l2vpn_free(data);
      mesh_l2vpn_release(message, record.data());

      EXPECT_NE(explain(message, bytes, MESH_L2VPN_TEXT).find("no fault, receivers accept it"),
                std::string::npos);
      EXPECT_NE(explain(message, bytes, MESH_L2VPN_HTML).find("<html"), std::string::npos);
    }
  }
}

// The allocator keeps a few blocks for the thread and counts them as used, so that equal numbers
// are not promised. A single block that each round leaves counts twice the bound.
TEST(Interface, LeavesNoMemory) {
  constexpr size_t rounds = 100;
  constexpr size_t smallestBlock = 32;
  for (const exported::Operations& operations : exported::allOperations()) {
    if (!mesh::wire::ownsMemory(operations.schema())) {
      continue;
    }
    const mesh_l2vpn_message* const message = mesh_l2vpn_message_by_id(operations.id());
    const oracle::Description& type = oracle::descriptionOf(std::string(operations.name));
    std::mt19937_64 random(operations.id());
    std::vector<Bytes> all(4);
    for (Bytes& bytes : all) {
      const oracle::RecordImage image(type,
                                      oracle::randomValue(type, random, oracle::Density::Full));
      uint32_t room = UINT32_MAX;
      ASSERT_EQ(operations.pack(image.data(), nullptr, &room), 0u);
      bytes.resize(room);
      ASSERT_EQ(operations.pack(image.data(), bytes.data(), &room), 0u);
    }
    std::vector<uint64_t> record((operations.schema().size + 7) / 8);
    const auto usedAfterReading = [&] {
      for (size_t round = 0; round < rounds; ++round) {
        for (const Bytes& bytes : all) {
          EXPECT_EQ(mesh_l2vpn_unpack(message, bytes.data(), bytes.size(), record.data()), 0);
          mesh_l2vpn_release(message, record.data());
          EXPECT_NE(toJson(message, bytes), "");
        }
      }
      return mallinfo2().uordblks;
    };
    const size_t before = usedAfterReading();
    EXPECT_LT(usedAfterReading(), before + rounds * smallestBlock / 2) << operations.name;
  }
}

TEST(Verify, NamesTheFaultThatDecides) {
  const mesh_l2vpn_message* const circuit = named("l2vpn_sync_vpls_ac");
  Bytes bytes = fromJson(circuit, "{}", MESH_L2VPN_COMPACT);
  ASSERT_EQ(bytes.size(), 72u);
  mesh_l2vpn_fault fault;
  std::memset(&fault, 0xEE, sizeof fault);
  EXPECT_EQ(mesh_l2vpn_verify(circuit, bytes.data(), bytes.size(), &fault), MESH_L2VPN_ACCEPTED);
  EXPECT_STREQ(fault.text, "");
  EXPECT_STREQ(fault.path, "");
  EXPECT_EQ(fault.position, 0u);
  bytes[40] = 13;  // f8's length
  EXPECT_EQ(mesh_l2vpn_verify(circuit, bytes.data(), bytes.size(), &fault), MESH_L2VPN_REJECTED);
  EXPECT_EQ(fault.position, 40u);
  EXPECT_STREQ(fault.path, "f8");
  EXPECT_STREQ(fault.text, "13 bytes instead of 12");
  EXPECT_EQ(toJson(circuit, bytes), "byte 40, f8: 13 bytes instead of 12");
  EXPECT_EQ(mesh_l2vpn_verify(circuit, bytes.data(), 3, &fault), MESH_L2VPN_REJECTED);
  EXPECT_STREQ(fault.path, "");
  EXPECT_STREQ(fault.text, "a message cannot have 3 bytes");
}

TEST(Verify, ToleratesAFaultInAWrapper) {
  const mesh_l2vpn_message* const update = named("l2vpn_sync_vpls_ac_update");
  Bytes bytes = fromJson(update, R"({"f0": 7})", MESH_L2VPN_COMPACT);
  bytes.pop_back();
  mesh_l2vpn_fault fault;
  EXPECT_EQ(mesh_l2vpn_verify(update, bytes.data(), bytes.size(), &fault), MESH_L2VPN_TOLERATED);
  EXPECT_STREQ(fault.path, "f1.f9");
  EXPECT_EQ(toJson(update, bytes).substr(0, 7), R"({"f0":7)");
}

TEST(Interface, RefusesWrongUse) {
  const mesh_l2vpn_message* const message = named("dbginfo_key_l2vpn");
  const Bytes bytes = fromJson(message, "{}", MESH_L2VPN_COMPACT);
  char* text = nullptr;
  EXPECT_EQ(mesh_l2vpn_to_json(nullptr, bytes.data(), bytes.size(), &text), EINVAL);
  EXPECT_STREQ(mesh_l2vpn_last_error(), "a parameter is null");
  EXPECT_EQ(mesh_l2vpn_to_json(message, nullptr, 0, &text), EINVAL);
  EXPECT_EQ(mesh_l2vpn_to_json(message, bytes.data(), bytes.size(), nullptr), EINVAL);
  EXPECT_EQ(mesh_l2vpn_record_to_json(message, nullptr, &text), EINVAL);
  EXPECT_EQ(mesh_l2vpn_identify(nullptr, 0, &text), EINVAL);
  uint8_t* data = nullptr;
  size_t size = 0;
  EXPECT_EQ(mesh_l2vpn_from_json(message, "{}", 2, MESH_L2VPN_FIXED, &data, &size), EINVAL);
  EXPECT_STREQ(mesh_l2vpn_last_error(),
               "dbginfo_key_l2vpn is sent in the compact arrangement and has no fixed one");
  EXPECT_EQ(mesh_l2vpn_from_json(message, "{", 1, MESH_L2VPN_COMPACT, &data, &size), EBADMSG);
  EXPECT_EQ(mesh_l2vpn_from_json(message, R"({"f0":-1})", 9, MESH_L2VPN_COMPACT, &data, &size),
            EBADMSG);
  EXPECT_STREQ(mesh_l2vpn_last_error(), "f0: expected a whole number from 0 to 65535, not -1");
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(data, nullptr);
  mesh_l2vpn_fault fault;
  EXPECT_EQ(mesh_l2vpn_verify(nullptr, bytes.data(), bytes.size(), &fault), MESH_L2VPN_REJECTED);
  EXPECT_STREQ(fault.text, "a parameter is null");
  EXPECT_EQ(mesh_l2vpn_verify(message, nullptr, 8, nullptr), MESH_L2VPN_REJECTED);
  mesh_l2vpn_free(nullptr);
  mesh_l2vpn_release(nullptr, nullptr);
}

TEST(Difference, HasFieldsAndBytes) {
  const mesh_l2vpn_message* const message = named("l2vpn_sync_stp");
  const Bytes one = fromJson(message, R"({"f0": 1})", MESH_L2VPN_FIXED);
  const Bytes other = fromJson(message, R"({"f0": 2})", MESH_L2VPN_FIXED);
  char* text = nullptr;
  const int result =
      mesh_l2vpn_difference(message, one.data(), one.size(), other.data(), other.size(), &text);
  EXPECT_EQ(taken(result, text),
            R"({"firstLength":40,"secondLength":40,"fields":[{"path":"f0","first":1,"second":2}],)"
            R"("bytes":[{"at":8,"meaning":"f0 value","first":"01","second":"02"}]})");
}

TEST(Schema, OfAllIsCompatibleWithItself) {
  char* text = nullptr;
  int result = mesh_l2vpn_schema(nullptr, &text);
  const std::string all = taken(result, text);
  text = nullptr;
  result = mesh_l2vpn_schema(named("l2vpn_sync_stp"), &text);
  const std::string one = taken(result, text);
  EXPECT_NE(one.find(R"("jsonSchema":{"$schema":)"), std::string::npos);
  EXPECT_LT(one.size(), all.size());
  text = nullptr;
  result = mesh_l2vpn_compat(all.data(), all.size(), all.data(), all.size(), &text);
  EXPECT_EQ(taken(result, text).find(R"({"verdict":"same",)"), 0u);
  text = nullptr;
  result = mesh_l2vpn_compat(all.data(), all.size(), one.data(), one.size(), &text);
  EXPECT_EQ(taken(result, text).find(R"({"verdict":"incompatible",)"), 0u);
  text = nullptr;
  EXPECT_EQ(mesh_l2vpn_compat("{}", 2, one.data(), one.size(), &text), EBADMSG);
}

TEST(Identify, NamesWhatBytesCouldBe) {
  const Bytes bytes = fromJson(named("dbginfo_endata_l2vpn"), R"({"f0": 1})", MESH_L2VPN_AS_SENT);
  char* text = nullptr;
  const int result = mesh_l2vpn_identify(bytes.data(), bytes.size(), &text);
  EXPECT_NE(taken(result, text)
                .find(R"({"message":"dbginfo_endata_l2vpn","fit":"exact","group":1,"faults":0})"),
            std::string::npos);
  text = nullptr;
  EXPECT_EQ(mesh_l2vpn_identify("none of it", 10, &text), EBADMSG);
}

// Few bytes ask for much: each of 4049 items of 16,572 bytes is one and the same table.
TEST(Limit, BoundsWhatFewBytesAskFor) {
  const mesh_l2vpn_message* const list = named("l2vpn_cfg_query_dfx_rec");
  const Bytes bytes = inspect::itemsOfOneVtable(40, 4);
  EXPECT_NE(toJson(list, bytes).find(R"("f1":[{"f0":"0000)"), std::string::npos);
  mesh_l2vpn_set_limit(500'000);
  char* text = nullptr;
  EXPECT_EQ(mesh_l2vpn_to_json(list, bytes.data(), bytes.size(), &text), ENOMEM);
  EXPECT_EQ(mesh_l2vpn_last_error(), "decoding this message needs " + std::to_string(40 * 16'572) +
                                         " bytes of memory; the limit is 500000");
  std::vector<uint64_t> record(6);
  EXPECT_EQ(mesh_l2vpn_unpack(list, bytes.data(), bytes.size(), record.data()), ENOMEM);
  EXPECT_EQ(record, std::vector<uint64_t>(6));
  // The record is within the limit, its text is not.
  mesh_l2vpn_set_limit(1'000'000);
  EXPECT_EQ(mesh_l2vpn_to_json(list, bytes.data(), bytes.size(), &text), ENOMEM);
  EXPECT_EQ(std::string(mesh_l2vpn_last_error()).substr(0, 15), "this text needs");
  mesh_l2vpn_set_limit(0);
  EXPECT_EQ(mesh_l2vpn_to_json(list, bytes.data(), bytes.size(), &text), 0);
  mesh_l2vpn_free(text);
}

TEST(Threads, HaveTheirOwnLimitAndError) {
  std::vector<std::thread> threads;
  for (size_t number = 0; number < 8; ++number) {
    threads.emplace_back([number] {
      mesh_l2vpn_set_limit(number % 2 == 0 ? 0 : 100);
      for (size_t round = 0; round < 200; ++round) {
        const mesh_l2vpn_message* const message =
            mesh_l2vpn_message_at((number + round) % mesh_l2vpn_message_count());
        uint8_t* data = nullptr;
        size_t size = 0;
        const int result = mesh_l2vpn_from_json(message, "{}", 2, MESH_L2VPN_COMPACT, &data, &size);
        if (number % 2 == 0) {
          ASSERT_EQ(result, 0) << mesh_l2vpn_last_error();
          ASSERT_NE(toJson(message, {data, data + size}), "");
        } else {
          ASSERT_EQ(result, ENOMEM);
          ASSERT_NE(std::string(mesh_l2vpn_last_error()).find("limit is 100"), std::string::npos);
        }
        mesh_l2vpn_free(data);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace
