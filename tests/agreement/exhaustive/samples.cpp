#include "agreement/exhaustive/samples.hpp"

#include <random>

#include "oracle/operations/writer.hpp"
#include "oracle/values/fill.hpp"

namespace exhaustive {
namespace {

using oracle::Description;
using oracle::Field;
using oracle::FieldValue;
using oracle::Kind;
using oracle::Value;

std::vector<uint8_t> nonzeroBytes(size_t size, std::mt19937_64& random) {
  std::vector<uint8_t> bytes(size);
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(1 + random() % 255);
  }
  return bytes;
}

// Nothing is zero, null or empty.
class NonzeroSource : public oracle::Source {
 public:
  explicit NonzeroSource(uint64_t seed) : random_(seed) {}

  uint64_t scalar(uint32_t width) override {
    uint64_t number = 0;
    for (const uint8_t byte : nonzeroBytes(width, random_)) {
      number = number << 8 | byte;
    }
    return number;
  }
  std::vector<uint8_t> array(uint32_t size) override { return nonzeroBytes(size, random_); }
  void fillString(FieldValue& field) override { oracle::setBytes(field, nonzeroBytes(5, random_)); }
  std::optional<uint32_t> itemCount(FieldValue&) override { return 2; }

 private:
  std::mt19937_64 random_;
};

// The message of an older writer, without its largest array and what follows.
Description withoutLargeArrays(const Description& message) {
  Description older = message;
  for (size_t slot = 0; slot < older.fields.size(); ++slot) {
    if (older.fields[slot].kind == Kind::Array && older.fields[slot].size > 1024) {
      older.fields.resize(slot);
      older.vtableLength = 4 + 2 * static_cast<uint32_t>(slot);
    }
  }
  return older;
}

std::vector<uint8_t> compact(const Description& message, bool reversed) {
  Description writer = message;
  std::vector<Description> items;
  items.reserve(message.fields.size());
  for (Field& field : writer.fields) {
    if (field.kind == Kind::Vector) {
      items.push_back(withoutLargeArrays(*field.nested));
      field.nested = &items.back();
    }
  }
  std::vector<uint8_t> bytes;
  for (const std::optional<uint8_t>& byte :
       oracle::compactBytes(writer, fullValue(writer), reversed)) {
    bytes.push_back(byte.value());
  }
  return bytes;
}

}  // namespace

std::string Sample::name() const {
  return std::string(operations->name) +
         (arrangement == Arrangement::Fixed ? "_fixed" : "_compact") +
         (reversed ? "_reversed" : "");
}

Value fullValue(const Description& message) {
  NonzeroSource source(message.id);
  return oracle::fill(message, source);
}

std::vector<Sample> fixedSamplesOf(const harness::Operations& operations) {
  const Description& message = oracle::descriptionOf(operations.name);
  std::vector<Sample> samples;
  for (const bool reversed : {false, true}) {
    if (!message.hasOutOfLineParts) {
      samples.push_back({&operations, Arrangement::Fixed, reversed,
                         oracle::fixedImage(message, fullValue(message), reversed)});
    }
  }
  return samples;
}

std::vector<Sample> samplesOf(const harness::Operations& operations) {
  const Description& message = oracle::descriptionOf(operations.name);
  std::vector<Sample> samples = fixedSamplesOf(operations);
  for (const bool reversed : {false, true}) {
    samples.push_back({&operations, Arrangement::Compact, reversed, compact(message, reversed)});
  }
  return samples;
}

std::vector<Sample> shapes() {
  std::vector<Sample> samples;
  for (const char* const name :
       {"l2vpn_sync_subpw", "l2vpn_sync_vpls_pw",             // arrays
        "l2vpn_sync_stp", "l2vpn_sync_vpls_pw_macdraw",       // none
        "l2vpn_sync_vpls_macping",                            // an array between scalars
        "l2vpn_sync_stp_update", "l2vpn_sync_vll_pw_delete",  // wrappers
        "dbginfo_key_l2vpn", "dbginfo_para_l2vpn",            // a byte string
        "l2vpn_cfg_query_comm_rec", "dbginfo_endata_l2vpn",   // a scalar after it
        "l2vpn_cfg_query_dfx_key", "dbginfo_cmd_key_l2vpn",   // nested, with byte strings
        "l2vpn_cfg_query_dfx_rec",                            // a vector
        "l2vpn_cfg_query_dfx_cond", "dbginfo_cmd_ipc_l2vpn",  // configuration, sent fixed
        "l2vpn_cfg_query_dfx_item", "l2vpn_stat_pw_stat"}) {
    for (Sample& sample : samplesOf(harness::operationsOf(name))) {
      samples.push_back(std::move(sample));
    }
  }
  return samples;
}

}  // namespace exhaustive
