// The schemas' numbers are the oracle's. The services' proofs state them by hand for the compiler.

#include <gtest/gtest.h>

#include "oracle/operations/writer.hpp"
#include "oracle/tests/test_buffer.hpp"
#include "support/operations.hpp"
#include "wire/compact_size.hpp"
#include "wire/fixed_image.hpp"
#include "wire/quick_reader.hpp"

namespace {

using harness::Operations;
using mesh::wire::Schema;
using mesh::wire::Slot;

TEST(Schemas, ListTheMessagesInOrder) {
  std::vector<std::string> names;
  for (const Operations& operations : harness::allOperations()) {
    names.push_back(std::string(operations.service) + " " + std::string(operations.name));
  }
  std::vector<std::string> expected;
  for (const oracle::Description& message : oracle::descriptions()) {
    expected.push_back(message.service + " " + message.name);
  }
  EXPECT_EQ(names, expected);
}

// Whether two messages differ in nothing but names.
bool haveSameLayout(const oracle::Description& one, const oracle::Description& other) {
  const auto sameFields = [](const oracle::Field& field, const oracle::Field& same) {
    return field.kind == same.kind && field.size == same.size && field.offset == same.offset &&
           (field.nested == nullptr || haveSameLayout(*field.nested, *same.nested));
  };
  return one.sentFixed == other.sentFixed && one.ownRoot == other.ownRoot &&
         one.slotOrder == other.slotOrder && one.wrapper == other.wrapper &&
         one.tableReaderChecksParameters == other.tableReaderChecksParameters &&
         one.largestSize == other.largestSize && one.recordSize == other.recordSize &&
         std::equal(one.fields.begin(), one.fields.end(), other.fields.begin(), other.fields.end(),
                    sameFields);
}

TEST(Schemas, ShareCodeWhereLayoutsAreTheSame) {
  for (const Operations& one : harness::allOperations()) {
    for (const Operations& other : harness::allOperations()) {
      const oracle::Description& message = oracle::descriptionOf(one.name);
      const bool share = haveSameLayout(message, oracle::descriptionOf(other.name));
      EXPECT_EQ(mesh::msg::haveSameLayout(*one.message, *other.message),
                one.name == other.name || (share && !message.hasOutOfLineParts))
          << one.name << " and " << other.name;
    }
  }
}

constexpr mesh::msg::Service qualified{"l2vpn_sync", mesh::msg::Naming::Qualified};
constexpr mesh::msg::Service bare{"l2vpn_sync", mesh::msg::Naming::Bare};
constexpr char inItsService[] = "l2vpn_sync_stp";
constexpr char inAnotherService[] = "l2vpn_stat_stp";
constexpr char withoutSeparator[] = "l2vpn_syncstp";

template <const auto& service, const auto& name>
concept HasIdentifier = requires {
  typename std::bool_constant<(mesh::msg::identifierOf(service, name), true)>;
};

TEST(Identifiers, OfQualifiedNamesNeedTheirService) {
  EXPECT_TRUE((HasIdentifier<qualified, inItsService>));
  EXPECT_FALSE((HasIdentifier<qualified, inAnotherService>));
  EXPECT_FALSE((HasIdentifier<qualified, withoutSeparator>));
  EXPECT_TRUE((HasIdentifier<bare, inAnotherService>));
}

class SchemaAgreement : public testing::TestWithParam<Operations> {
 protected:
  const oracle::Description& message() const { return oracle::descriptionOf(GetParam().name); }
  const Schema& schema() const { return GetParam().schema(); }
};

TEST_P(SchemaAgreement, OnIdentity) {
  EXPECT_EQ(GetParam().id(), message().id);
  EXPECT_EQ(GetParam().isSentFixed(), message().sentFixed);
}

TEST_P(SchemaAgreement, OnTheRecord) {
  EXPECT_EQ(schema().size, message().recordSize);
  ASSERT_EQ(schema().slots.size(), message().fields.size());
  for (size_t index = 0; index < schema().slots.size(); ++index) {
    const Slot& slot = schema().slots[index];
    const oracle::Field& field = message().fields[index];
    EXPECT_EQ(slot.recordOffset, field.offset) << "slot " << index;
    if (mesh::wire::isOutOfLine(slot.kind)) {
      EXPECT_EQ(slot.countOffset, field.lengthOffset) << "slot " << index;
    } else {
      EXPECT_EQ(slot.size, field.size) << "slot " << index;
    }
  }
}

TEST_P(SchemaAgreement, OnCompactSizes) {
  EXPECT_EQ(mesh::wire::vtableLength(schema()), message().vtableLength);
  const uint64_t smallest = 4 + mesh::wire::smallestTableSize(schema());
  EXPECT_EQ(smallest, oracle::compactSize(message(), oracle::zeroValue(message())));
  EXPECT_EQ(smallest + mesh::wire::scalarWidths(schema()),
            oracle::compactSize(message(), oracle::withScalars(message(), UINT64_MAX)));
}

// Which quick readers a message has. Without them it is read to the same values, but slowly.
TEST_P(SchemaAgreement, OnQuickReaders) {
  EXPECT_EQ(mesh::wire::hasFixedArrangement(schema()), !message().hasOutOfLineParts);
  const bool hasVector = message().name == "l2vpn_cfg_query_dfx_rec";
  EXPECT_EQ(mesh::wire::hasQuickReader(schema()), message().recordSize <= 256 && !hasVector);
}

TEST_P(SchemaAgreement, OnTheFixedImage) {
  if (message().hasOutOfLineParts) {
    EXPECT_FALSE(GetParam().isSentFixed());
    return;
  }
  const oracle::FixedLayout layout = oracle::fixedLayout(message());
  EXPECT_EQ(mesh::wire::fixedTableLength(schema()), layout.tableLength);
  EXPECT_EQ(mesh::wire::fixedVtable(schema()), layout.vtablePosition);
  EXPECT_EQ(mesh::wire::fixedLength(schema()), layout.length);
  ASSERT_EQ(layout.slotEntries.size(), schema().slots.size());
  for (size_t index = 0; index < schema().slots.size(); ++index) {
    EXPECT_EQ(mesh::wire::fixedEntry(schema(), index), layout.slotEntries[index])
        << "slot " << index;
  }
}

INSTANTIATE_TEST_SUITE_P(All, SchemaAgreement, testing::ValuesIn(harness::allOperations()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
