// mesh_l2vpn_verify and __unpack agree: on mutated buffers, on every truncation, on the corpora.

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "mesh_l2vpn/inspect.h"
#include "oracle/values/generate.hpp"
#include "oracle/values/record_image.hpp"
#include "support/exported.hpp"
#include "wire/slot_reader.hpp"

namespace {

using exported::Operations;
using Bytes = std::vector<uint8_t>;

// More than a million for all messages. The two with items of 16 KiB take a tenth.
constexpr int mutationsOfEach = 12'120;
constexpr int mutationsOfOne = 60;

// Two records of the message: what __unpack and mesh_l2vpn_unpack fill in.
class Pair {
 public:
  explicit Pair(const Operations& operations)
      : operations_(operations),
        message_(mesh_l2vpn_message_by_id(operations.id())),
        one_(words()),
        other_(words()) {}

  // Empty if both agree on the bytes.
  std::string disagreement(const Bytes& bytes) {
    const auto length = static_cast<uint32_t>(bytes.size());
    const bool isTaken =
        mesh_l2vpn_verify(message_, bytes.data(), length, nullptr) != MESH_L2VPN_REJECTED;
    if (isTaken != slotReaderTakes(bytes)) {
      return isTaken ? "only verify accepts" : "only the slot reader accepts";
    }
    std::ranges::fill(one_, 0);
    operations_.unpack(bytes.data(), length, one_.data());
    const bool isUnpacked = mesh_l2vpn_unpack(message_, bytes.data(), length, other_.data()) == 0;
    std::string found;
    if (isUnpacked != isTaken) {
      found = std::string("mesh_l2vpn_unpack: ") + mesh_l2vpn_last_error();
    } else if (isTaken && json(one_) != json(other_)) {
      found = "the records differ: " + json(one_) + " and " + json(other_);
    }
    operations_.freeUnpacked(one_.data());
    mesh_l2vpn_release(message_, other_.data());
    return found;
  }

 private:
  [[nodiscard]] std::vector<uint64_t> words() const {
    return std::vector<uint64_t>((operations_.schema().size + 7) / 8);
  }

  // The engine's reader that decides: __unpack does not tell whether it accepted.
  [[nodiscard]] bool slotReaderTakes(const Bytes& bytes) {
    static mesh::host::serial_env env;
    if (bytes.size() < 4) {
      return false;
    }
    std::ranges::fill(one_, 0);
    auto* const record = reinterpret_cast<uint8_t*>(one_.data());
    const mesh::wire::HostBuffer buffer{bytes.data(), static_cast<uint32_t>(bytes.size())};
    const auto decoded = mesh::wire::SlotReader(env, buffer)
                             .decodeTable(operations_.schema(), buffer.read<uint32_t>(0), record);
    operations_.freeUnpacked(record);
    return decoded == mesh::wire::Decoded::Yes;
  }

  [[nodiscard]] std::string json(const std::vector<uint64_t>& record) const {
    char* text = nullptr;
    if (mesh_l2vpn_record_to_json(message_, record.data(), &text) != 0) {
      return mesh_l2vpn_last_error();
    }
    std::string copy = text;
    mesh_l2vpn_free(text);
    return copy;
  }

  const Operations& operations_;
  const mesh_l2vpn_message* message_;
  std::vector<uint64_t> one_;
  std::vector<uint64_t> other_;
};

Bytes packed(const Operations& operations, std::mt19937_64& random, mesh_l2vpn_form form) {
  const oracle::Description& type = oracle::descriptionOf(std::string(operations.name));
  const auto density = static_cast<oracle::Density>(random() % 3);
  const oracle::RecordImage image(type, oracle::randomValue(type, random, density));
  uint8_t* data = nullptr;
  size_t size = 0;
  EXPECT_EQ(
      mesh_l2vpn_pack(mesh_l2vpn_message_by_id(operations.id()), image.data(), form, &data, &size),
      0)
      << mesh_l2vpn_last_error();
  Bytes bytes(data, data + size);
  mesh_l2vpn_free(data);
  return bytes;
}

std::string hex(const Bytes& bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

class Verdicts : public testing::TestWithParam<Operations> {};

TEST_P(Verdicts, AgreeOnMutatedBuffers) {
  std::mt19937_64 random(GetParam().id());
  Pair pair(GetParam());
  const bool isLarge = GetParam().name.starts_with("l2vpn_cfg_query_dfx_") &&
                       !GetParam().name.ends_with("cond") && !GetParam().name.ends_with("key");
  const int mutations = isLarge ? mutationsOfEach / 10 : mutationsOfEach;
  for (int round = 0; round < mutations; round += mutationsOfOne) {
    const auto form = random() % 2 == 0 ? MESH_L2VPN_COMPACT : MESH_L2VPN_AS_SENT;
    const Bytes sound = packed(GetParam(), random, form);
    ASSERT_EQ(pair.disagreement(sound), "") << hex(sound);
    for (int mutation = 0; mutation < mutationsOfOne; ++mutation) {
      const Bytes bytes = oracle::mutate(sound, random);
      ASSERT_EQ(pair.disagreement(bytes), "") << hex(bytes);
    }
  }
}

TEST_P(Verdicts, AgreeOnEveryTruncation) {
  std::mt19937_64 random(GetParam().id());
  Pair pair(GetParam());
  for (const auto form : {MESH_L2VPN_COMPACT, MESH_L2VPN_AS_SENT}) {
    Bytes bytes = packed(GetParam(), random, form);
    while (!bytes.empty()) {
      bytes.pop_back();
      bytes.shrink_to_fit();  // so that sanitizers see the end
      ASSERT_EQ(pair.disagreement(bytes), "") << hex(bytes);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, Verdicts, testing::ValuesIn(exported::allOperations()),
                         [](const auto& each) { return std::string(each.param.name); });

// An input is two bytes that choose, and a message.
TEST(VerdictsOfCorpora, Agree) {
  int files = 0;
  for (const auto& file :
       std::filesystem::recursive_directory_iterator(MESH_L2VPN_SOURCE "/fuzz/corpus")) {
    if (!file.is_regular_file()) {
      continue;
    }
    std::ifstream in(file.path(), std::ios::binary);
    Bytes bytes{std::istreambuf_iterator<char>(in), {}};
    bytes.erase(bytes.begin(),
                bytes.begin() + static_cast<ptrdiff_t>(std::min<size_t>(2, bytes.size())));
    ++files;
    for (const Operations& operations : exported::allOperations()) {
      Pair pair(operations);
      ASSERT_EQ(pair.disagreement(bytes), "") << operations.name << " " << file.path();
    }
  }
  EXPECT_GT(files, 300);
}

}  // namespace

namespace exported {
void PrintTo(const Operations& operations, std::ostream* out);
void PrintTo(const Operations& operations, std::ostream* out) {
  *out << operations.name;
}
}  // namespace exported
