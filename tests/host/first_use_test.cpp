// The order in which each operation binds its module, allocates, calls the middleware, releases and
// logs, as its host sees it: for every message, in hosts that have all functions, all but one, and
// none.
//
// Each row is one call. `steps` is what the first call in a process does; the second does the same
// without the bindings.

#include <gtest/gtest.h>

#include "host/first_use.hpp"
#include "model/reader.hpp"
#include "model/trace.hpp"

namespace {

using harness::Buffer;
using harness::Call;
using harness::Expected;
using harness::Host;
using harness::Layout;
using harness::Scene;
using harness::Step;
using harness::Steps;
using harness::Trace;

// Messages. Who decodes the root is part of the order: the message checks the frame, then binds;
// the table reader's caller binds, then checks.
bool any(const Scene&) {
  return true;
}
bool ownRoot(const Scene& scene) {
  return scene.message.ownRoot;
}
bool rootByTableReader(const Scene& scene) {
  return !scene.message.ownRoot;
}
bool withParts(const Scene& scene) {
  return scene.ownsMemory();
}
bool withoutParts(const Scene& scene) {
  return !scene.ownsMemory();
}
bool withNestedTable(const Scene& scene) {
  return scene.nestedTable() != nullptr;
}
bool compact(const Scene& scene) {
  return !scene.isFixed();
}
bool fixedImage(const Scene& scene) {
  return scene.isFixed();
}
bool onStack(const Scene& scene) {
  return scene.isOnStack();
}
bool inBlock(const Scene& scene) {
  return !scene.isOnStack();
}

// Bindings.
const Step receiverBindsHost = [](Expected& expected) { expected.bindHost("receive"); };
const Step receiverBindsUnpack = [](Expected& expected) { expected.bindUnpack("receive"); };
const Step bindHost = [](Expected& expected) { expected.bindHost("send"); };
const Step bindUnpack = [](Expected& expected) { expected.bindUnpack("send"); };

// Blocks of the send operations.
uint32_t singleSize(const Scene& scene) {
  return scene.isFixed() ? scene.fixed : static_cast<uint32_t>(scene.packed.size());
}
uint32_t batchSize(const Scene& scene, uint32_t count) {
  return scene.isFixed() ? count * (scene.fixed + 16) : 0x10000 + count * 16;
}
Step take(uint32_t (*size)(const Scene&), const char* operation, uint32_t block) {
  return [=](Expected& expected) {
    const Scene& scene = expected.scene();
    expected.ofSending(model::memAllocLine(size(scene), scene.message.name + operation, block));
  };
}
Step takeForBatch(uint32_t count, uint32_t block = 1) {
  return [=](Expected& expected) {
    const Scene& scene = expected.scene();
    expected.ofSending(
        model::memAllocLine(batchSize(scene, count), scene.message.name + "__sendbatch", block));
  };
}
Step give(const char* operation) {
  return [=](Expected& expected) {
    expected.ofSending(model::memFreeLine(1, expected.scene().message.name + operation));
  };
}
const Step takeForSingle = take(&singleSize, "__sendsingle", 1);
const Step refuseSingle = take(&singleSize, "__sendsingle", 0);
Step refuseBatch(uint32_t count) {
  return takeForBatch(count, 0);
}
const Step giveSingle = give("__sendsingle");
const Step giveBatch = give("__sendbatch");

// The middleware's calls.
Step handOver(uint32_t count) {
  return [=](Expected& expected) { expected.always(model::sendMsgLine(5, count)); };
}
Step handOverWithExtra(uint32_t count) {
  return [=](Expected& expected) { expected.always(model::sendToMsgLine(5, count, 7)); };
}

// Reports of the receiver, under the name of whoever decodes the root.
std::string rootName(const Scene& scene) {
  return scene.message.name + (scene.message.ownRoot ? "_unpack" : "_unpack_non_root");
}
Step logParameters(bool dataIsNull, uint32_t length, bool recordIsNull) {
  return [=](Expected& expected) {
    expected.log(model::unpackParametersLine(expected.scene().message.name + "_unpack", dataIsNull,
                                             length, recordIsNull));
  };
}
const Step logTableOffset = [](Expected& expected) {
  expected.log(model::tableOffsetLine(rootName(expected.scene()), 0, 12));
};
const Step logVtableOffset = [](Expected& expected) {
  expected.log(model::vtableOffsetLine(rootName(expected.scene()), 8, 12));
};
const Step logVtableLength = [](Expected& expected) {
  expected.log(model::vtableLengthLine(rootName(expected.scene()), 9, 8));
};

// Frames, for those reports and without a field.
const Buffer emptyTable = Layout().u32(8).u16(4, 4).u32(4);
const Buffer badTable = Layout().u32(0).u16(4, 4).u32(4);
const Buffer badVtable = Layout().u32(8).u16(4, 4).u32(8);
const Buffer badVtableLength = Layout().u32(8).u16(9, 4).u32(4);
// The first slot lies behind the end.
const Buffer badSlot = Layout().u32(12).u16(6, 4, 0xFFF0, 0).u32(8);

// A table that holds the first nested table alone, 1000 bytes behind its offset word.
Buffer badNestedTable(const Scene& scene) {
  const auto slot = static_cast<size_t>(scene.nestedTable() - scene.message.fields.data());
  Layout layout;
  const size_t vtable = (4 + 2 * (slot + 1) + 3) / 4 * 4;
  layout.u32(4 + vtable).u16(4 + 2 * (slot + 1), 8).zeros(2 * slot).u16(4);
  layout.zeros(vtable - 4 - 2 * (slot + 1)).u32(vtable, 1000);
  return layout;
}
const Step logNestedTable = [](Expected& expected) {
  const Scene& scene = expected.scene();
  const auto length = static_cast<uint32_t>(badNestedTable(scene).size());
  expected.log(model::tableOffsetLine(scene.nestedTable()->nested->name + "_unpack_non_root",
                                      length - 4 + 1000, length));
};

// The receiver's blocks: of a message that is in order, and of one whose first block is refused.
model::UnpackResult unpacked(const Scene& scene, int failingAllocation) {
  return model::unpack(scene.message, scene.packed.data(),
                       static_cast<uint32_t>(scene.packed.size()), false, false, failingAllocation);
}
const Step takeParts = [](Expected& expected) {
  expected.ofReceiving(unpacked(expected.scene(), 0).trace);
};
const Step giveParts = [](Expected& expected) {
  const Scene& scene = expected.scene();
  expected.ofReceiving(model::freeUnpacked(scene.message, unpacked(scene, 0).record));
};
// A release calls the host for null pointers too.
const Step giveNothing = [](Expected& expected) {
  const model::Message& message = expected.scene().message;
  expected.ofReceiving(model::freeUnpacked(message, model::zeroValue(message)));
};
const Step refusePart = [](Expected& expected) {
  expected.ofReceiving({unpacked(expected.scene(), 1).trace.at(0)});
};
const Step logRefusedPart = [](Expected& expected) {
  expected.log(unpacked(expected.scene(), 1).trace.at(1));
};

// Calls of the receiver.
const Call unpackParts = [](Scene& scene) { scene.unpack(scene.packed); };
Call unpack(const Buffer& bytes) {
  return [=](Scene& scene) { scene.unpack(bytes); };
}
Call unpackLength(uint32_t length) {
  return [=](Scene& scene) {
    scene.operations.unpack(emptyTable.data(), length, scene.received.data());
  };
}
const Call unpackNull = [](Scene& scene) {
  scene.operations.unpack(nullptr, 12, scene.received.data());
};
const Call unpackToNull = [](Scene& scene) {
  scene.operations.unpack(emptyTable.data(), 12, nullptr);
};
const Call unpackBadNested = [](Scene& scene) { scene.unpack(badNestedTable(scene)); };
const Call free = [](Scene& scene) { scene.operations.freeUnpacked(scene.received.data()); };
const Call freeNull = [](Scene& scene) { scene.operations.freeUnpacked(nullptr); };
const Call unpackAndFree = [](Scene& scene) {
  unpackParts(scene);
  free(scene);
};

// Records for the sender: two with values, two of which the second has no encoding, one without.
const void* good(const Scene& scene) {
  return scene.records.data();
}
const void* goodThenBad(const Scene& scene) {
  return scene.unencodable.data();
}
const void* bad(const Scene& scene) {
  return static_cast<const uint8_t*>(scene.unencodable.data()) + scene.message.recordSize;
}
const void* null(const Scene&) {
  return nullptr;
}
using Records = const void* (*)(const Scene&);

// Calls of the sender. Room that is added to or taken from what the message needs.
Call pack(Records records, int room) {
  return [=](Scene& scene) {
    scene.pack(records(scene), scene.target.data(), scene.packed.size() + room);
  };
}
Call packNowhere(int room) {
  return [=](Scene& scene) { scene.pack(good(scene), nullptr, scene.packed.size() + room); };
}
const Call packNoLength = [](Scene& scene) {
  scene.operations.pack(good(scene), scene.target.data(), nullptr);
};
Call single(Records records, uint64_t extra = 0) {
  return [=](Scene& scene) { scene.operations.sendSingle(5, records(scene), extra); };
}
Call batch(Records records, uint32_t count, uint64_t extra = 0) {
  return [=](Scene& scene) { scene.operations.sendBatch(5, records(scene), count, extra); };
}
Call message(Records records, uint32_t count) {
  return [=](Scene& scene) { scene.operations.sendMsg(5, records(scene), count); };
}
Call messageTo(Records records, uint32_t count, uint64_t extra) {
  return [=](Scene& scene) { scene.operations.sendToMsg(5, records(scene), count, extra); };
}

Call withoutMemory(const Call& call) {
  return [=](Scene& scene) {
    harness::recorder().everyAllocationFails = true;
    call(scene);
  };
}
Call refusedByMiddleware(const Call& call) {
  return [=](Scene& scene) {
    harness::recorder().middlewareResult = 77;
    call(scene);
  };
}
const Step logPackToNowhere = [](Expected& expected) {
  const Scene& scene = expected.scene();
  expected.log(model::packParametersLine(scene.message.name + "_pack", true,
                                         static_cast<uint32_t>(scene.packed.size()), false));
};

struct Row {
  const char* name;
  bool (*applies)(const Scene&);
  Call call;
  Steps steps;
  // What the host must have for the row to mean anything.
  unsigned needs = 0;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

constexpr unsigned cache = harness::MemUseFlagGet | harness::MemCacheAlloc | harness::MemFree;
constexpr unsigned memory = harness::MemAlloc | harness::MemFree;

// Counts whose size wraps to that of one record, or of none.
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
    {"free_with_parts", withParts, free, {receiverBindsUnpack, giveNothing}},
    {"free_without_parts", withoutParts, free, {}},
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
  int messages = 0;
  for (const harness::Operations& operations : harness::allOperations()) {
    Scene scene(operations);
    if (row.applies(scene)) {
      ++messages;
      EXPECT_EQ(harness::difference(harness::observedLines(row.call, scene, hosts),
                                    harness::expectedLines(row.steps, scene, hosts)),
                "")
          << operations.name;
    }
  }
  EXPECT_GT(messages, 0);
}

class FirstUse : public testing::TestWithParam<Row> {};

TEST_P(FirstUse, TakesTheseSteps) {
  expectSteps(GetParam(), everyHost());
}

INSTANTIATE_TEST_SUITE_P(Of, FirstUse, testing::ValuesIn(table),
                         [](const auto& test) { return std::string(test.param.name); });

// Exactly 1 chooses the cache.
TEST(FirstUse, AsksForTheCacheOnlyAtAFlagOfOne) {
  std::vector<Host> hosts;
  for (const uint32_t flag : {0U, 2U, 3U, 0x101U, 0x80000001U, 0xFFFFFFFFU}) {
    hosts.push_back({harness::wholeHost, flag});
  }
  expectSteps({"unpack", any, unpackParts, {receiverBindsUnpack, takeParts}}, hosts);
  expectSteps({"pack", any, pack(good, 0), {bindUnpack}}, hosts);
}

}  // namespace
