// The order in which each operation binds its module, allocates, calls the middleware, releases and
// logs, as its host sees it: for every message, in hosts with all functions, all but one, and none.
//
// A row is one call, and the steps of the first such call. The second call takes the same steps
// without the bindings.

#include <gtest/gtest.h>

#include "host/first_use_words.hpp"

namespace {

using namespace harness::first_use;
using harness::Call;
using harness::Host;
using harness::Scene;
using harness::Steps;

struct Row {
  const char* name;
  bool (*applies)(const Scene&);
  Call call;
  Steps steps;
  // The call fails as intended only in a host with these functions.
  unsigned needs = 0;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

constexpr unsigned cache = harness::MemUseFlagGet | harness::MemCacheAlloc | harness::MemFree;
constexpr unsigned memory = harness::MemAlloc | harness::MemFree;

// Counts whose block size wraps: to that of one record, and to that of the batch region.
constexpr uint32_t wrappedFixed = 0x20000001;
constexpr uint32_t wrappedCompact = 0x10000000;

const std::vector<Row> table{
    {"unpack", any, unpackParts, {receiverBindsUnpack, takeParts}},
    {"unpack_empty_table", any, unpack(emptyTable), {receiverBindsUnpack}},
    {"unpack_null", any, unpackNull, {receiverBindsHost, logParameters(true, 12, false)}},
    {"unpack_short", any, unpackLength(3), {receiverBindsHost, logParameters(false, 3, false)}},
    {"unpack_negative_length",
     any,
     unpackLength(0x80000000),
     {receiverBindsHost, logParameters(false, 0x80000000, false)}},
    {"unpack_to_null", any, unpackToNull, {receiverBindsHost, logParameters(false, 12, true)}},
    {"unpack_bad_table_by_message", ownRoot, unpack(badTable), {receiverBindsHost, logTableOffset}},
    {"unpack_bad_table_by_table_reader",
     rootByTableReader,
     unpack(badTable),
     {receiverBindsUnpack, receiverBindsHost, logTableOffset, giveNothing}},
    {"unpack_bad_vtable_by_message",
     ownRoot,
     unpack(badVtable),
     {receiverBindsHost, logVtableOffset}},
    {"unpack_bad_vtable_by_table_reader",
     rootByTableReader,
     unpack(badVtable),
     {receiverBindsUnpack, receiverBindsHost, logVtableOffset, giveNothing}},
    {"unpack_bad_vtable_length_by_message",
     ownRoot,
     unpack(badVtableLength),
     {receiverBindsHost, logVtableLength}},
    {"unpack_bad_vtable_length_by_table_reader",
     rootByTableReader,
     unpack(badVtableLength),
     {receiverBindsUnpack, receiverBindsHost, logVtableLength, giveNothing}},
    {"unpack_bad_slot", any, unpack(badSlot), {receiverBindsUnpack, giveNothing}},
    {"unpack_bad_nested_table",
     withNestedTable,
     unpackBadNested,
     {receiverBindsUnpack, receiverBindsHost, logNestedTable, giveNothing}},
    {"unpack_without_memory",
     withParts,
     withoutMemory(unpackParts),
     {receiverBindsUnpack, refusePart, receiverBindsHost, logRefusedPart, giveNothing},
     cache},

    {"unpack_and_free", withParts, unpackAndFree, {receiverBindsUnpack, takeParts, giveParts}},
    {"free_with_parts", withParts, freeRecord, {receiverBindsUnpack, giveNothing}},
    {"free_without_parts", withoutParts, freeRecord, {}},
    {"free_null_with_parts", withParts, freeNull, {receiverBindsUnpack}},
    {"free_null_without_parts", withoutParts, freeNull, {}},

    {"pack", any, pack(good, 0), {bindUnpack}},
    {"pack_with_room_left", any, pack(good, 1000), {bindUnpack}},
    {"pack_null_buffer", any, packNowhere(0), {bindHost, logPackToNowhere}},
    {"pack_null_buffer_too_small", any, packNowhere(-1), {}},
    {"pack_too_small", any, pack(good, -1), {}},
    {"pack_null_record", any, pack(null, 0), {}},
    {"pack_null_length", any, packNoLength, {}},
    {"pack_unencodable", compact, pack(bad, 1000), {}},

    {"sendsingle_on_stack", onStack, single(good), {bindUnpack, handOver(1)}},
    {"sendsingle_on_stack_extra", onStack, single(good, 7), {bindUnpack, handOverWithExtra(1)}},
    {"sendsingle_on_stack_refused",
     onStack,
     refusedByMiddleware(single(good)),
     {bindUnpack, handOver(1)}},
    {"sendsingle_in_block",
     inBlock,
     single(good),
     {bindHost, takeForSingle, bindUnpack, handOver(1), giveSingle}},
    {"sendsingle_in_block_extra",
     inBlock,
     single(good, 7),
     {bindHost, takeForSingle, bindUnpack, handOverWithExtra(1), giveSingle}},
    {"sendsingle_in_block_refused",
     inBlock,
     refusedByMiddleware(single(good)),
     {bindHost, takeForSingle, bindUnpack, handOver(1), giveSingle}},
    {"sendsingle_in_block_without_memory",
     inBlock,
     withoutMemory(single(good)),
     {bindHost, refuseSingle},
     memory},
    {"sendsingle_null", compact, single(null), {}},
    {"sendsingle_unencodable", compact, single(bad), {}},

    {"sendbatch",
     any,
     batch(good, 2),
     {bindHost, takeForBatch(2), bindUnpack, handOver(2), giveBatch}},
    {"sendbatch_extra",
     any,
     batch(good, 2, 7),
     {bindHost, takeForBatch(2), bindUnpack, handOverWithExtra(2), giveBatch}},
    {"sendbatch_refused",
     any,
     refusedByMiddleware(batch(good, 2)),
     {bindHost, takeForBatch(2), bindUnpack, handOver(2), giveBatch}},
    {"sendbatch_of_one",
     any,
     batch(good, 1),
     {bindHost, takeForBatch(1), bindUnpack, handOver(1), giveBatch}},
    {"sendbatch_of_none", any, batch(good, 0), {bindHost, takeForBatch(0), handOver(0), giveBatch}},
    {"sendbatch_of_none_at_null",
     any,
     batch(null, 0, 7),
     {bindHost, takeForBatch(0), handOverWithExtra(0), giveBatch}},
    {"sendbatch_without_memory",
     any,
     withoutMemory(batch(good, 2)),
     {bindHost, refuseBatch(2)},
     memory},
    {"sendbatch_wrapped_fixed",
     fixedImage,
     batch(good, wrappedFixed),
     {bindHost, takeForBatch(wrappedFixed), giveBatch}},
    {"sendbatch_wrapped_compact",
     compact,
     batch(good, wrappedCompact),
     {bindHost, takeForBatch(wrappedCompact), giveBatch}},
    {"sendbatch_null", compact, batch(null, 2), {bindHost, takeForBatch(2), giveBatch}},
    {"sendbatch_unencodable_first", compact, batch(bad, 1), {bindHost, takeForBatch(1), giveBatch}},
    {"sendbatch_unencodable_second",
     compact,
     batch(goodThenBad, 2),
     {bindHost, takeForBatch(2), bindUnpack, giveBatch}},

    {"sendmsg_of_none", any, message(good, 0), {}},
    {"sendmsg_of_one_on_stack", onStack, message(good, 1), {bindUnpack, handOver(1)}},
    {"sendmsg_of_one_in_block",
     inBlock,
     message(good, 1),
     {bindHost, takeForSingle, bindUnpack, handOver(1), giveSingle}},
    {"sendmsg_of_one_null", compact, message(null, 1), {}},
    {"sendmsg_of_two",
     any,
     message(good, 2),
     {bindHost, takeForBatch(2), bindUnpack, handOver(2), giveBatch}},

    {"sendtomsg_of_none", any, messageTo(good, 0, 7), {}},
    {"sendtomsg_of_one_on_stack",
     onStack,
     messageTo(good, 1, 7),
     {bindUnpack, handOverWithExtra(1)}},
    {"sendtomsg_of_one_in_block",
     inBlock,
     messageTo(good, 1, 7),
     {bindHost, takeForSingle, bindUnpack, handOverWithExtra(1), giveSingle}},
    {"sendtomsg_of_one_null", compact, messageTo(null, 1, 7), {}},
    {"sendtomsg_of_two",
     any,
     messageTo(good, 2, 7),
     {bindHost, takeForBatch(2), bindUnpack, handOverWithExtra(2), giveBatch}},
};

std::vector<Host> everyHost() {
  std::vector<Host> hosts{{harness::wholeHost}, {0}};
  for (unsigned function = 1; function <= harness::wholeHost; function *= 2) {
    hosts.push_back({harness::wholeHost & ~function});
  }
  return hosts;
}

void expectSteps(const Row& row, std::vector<Host> hosts) {
  std::erase_if(hosts, [&](const Host& host) { return !host.has(row.needs); });
  std::list<Scene> scenes;
  for (const harness::Operations& operations : harness::allOperations()) {
    scenes.emplace_back(operations);
  }
  scenes.remove_if([&](const Scene& scene) { return !row.applies(scene); });
  ASSERT_FALSE(scenes.empty());
  EXPECT_EQ(harness::difference(harness::observedLines(row.call, scenes, hosts),
                                harness::expectedLines(row.steps, scenes, hosts)),
            "");
}

class FirstUse : public testing::TestWithParam<Row> {};

TEST_P(FirstUse, TakesTheseSteps) {
  expectSteps(GetParam(), everyHost());
}

INSTANTIATE_TEST_SUITE_P(Of, FirstUse, testing::ValuesIn(table),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(UseFlag, ChoosesTheCacheOnlyWhenItIsOne) {
  std::vector<Host> hosts;
  for (const uint32_t flag : {0U, 2U, 3U, 0x101U, 0x80000001U, 0xFFFFFFFFU}) {
    hosts.push_back({harness::wholeHost, flag});
  }
  expectSteps({"unpack", any, unpackParts, {receiverBindsUnpack, takeParts}}, hosts);
  expectSteps({"pack", any, pack(good, 0), {bindUnpack}}, hosts);
}

}  // namespace
