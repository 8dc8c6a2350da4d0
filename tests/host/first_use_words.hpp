// The vocabulary of the table of first uses: messages, calls, steps.
#pragma once

#include "host/first_use.hpp"
#include "oracle/operations/reader.hpp"
#include "oracle/operations/trace.hpp"

namespace harness::first_use {

// Messages. A message that decodes its own root checks the head, then binds. A message whose root
// the table reader decodes binds, then checks.
inline bool any(const Scene&) {
  return true;
}
inline bool ownRoot(const Scene& scene) {
  return scene.message.ownRoot;
}
inline bool rootByTableReader(const Scene& scene) {
  return !scene.message.ownRoot;
}
inline bool withParts(const Scene& scene) {
  return scene.ownsMemory();
}
inline bool withoutParts(const Scene& scene) {
  return !scene.ownsMemory();
}
inline bool withNestedTable(const Scene& scene) {
  return scene.nestedTable() != nullptr;
}
inline bool compact(const Scene& scene) {
  return !scene.isFixed();
}
inline bool fixedImage(const Scene& scene) {
  return scene.isFixed();
}
inline bool onStack(const Scene& scene) {
  return scene.isOnStack();
}
inline bool inBlock(const Scene& scene) {
  return !scene.isOnStack();
}

// Bindings.
inline const Step receiverBindsHost = [](Expected& expected) { expected.bindHost("receive"); };
inline const Step receiverBindsUnpack = [](Expected& expected) { expected.bindUnpack("receive"); };
inline const Step bindHost = [](Expected& expected) { expected.bindHost("send"); };
inline const Step bindUnpack = [](Expected& expected) { expected.bindUnpack("send"); };

// Blocks of the send operations.
inline uint32_t singleSize(const Scene& scene) {
  return scene.isFixed() ? scene.fixed : static_cast<uint32_t>(scene.packed.size());
}
inline uint32_t batchSize(const Scene& scene, uint32_t count) {
  return scene.isFixed() ? count * (scene.fixed + 16) : 0x10000 + count * 16;
}
inline Step take(uint32_t (*size)(const Scene&), const char* operation, uint32_t block) {
  return [=](Expected& expected) {
    const Scene& scene = expected.scene();
    expected.ofSending(oracle::memAllocLine(size(scene), scene.message.name + operation, block));
  };
}
inline Step takeForBatch(uint32_t count, uint32_t block = 1) {
  return [=](Expected& expected) {
    const Scene& scene = expected.scene();
    expected.ofSending(
        oracle::memAllocLine(batchSize(scene, count), scene.message.name + "__sendbatch", block));
  };
}
inline Step give(const char* operation) {
  return [=](Expected& expected) {
    expected.ofSending(oracle::memFreeLine(1, expected.scene().message.name + operation));
  };
}
inline const Step takeForSingle = take(&singleSize, "__sendsingle", 1);
inline const Step refuseSingle = take(&singleSize, "__sendsingle", 0);
inline Step refuseBatch(uint32_t count) {
  return takeForBatch(count, 0);
}
inline const Step giveSingle = give("__sendsingle");
inline const Step giveBatch = give("__sendbatch");

// The middleware's calls.
inline Step handOver(uint32_t count) {
  return [=](Expected& expected) { expected.always(oracle::sendMsgLine(5, count)); };
}
inline Step handOverWithExtra(uint32_t count) {
  return [=](Expected& expected) { expected.always(oracle::sendToMsgLine(5, count, 7)); };
}

// The receiver's reports. They name the decoder of the root.
inline std::string rootName(const Scene& scene) {
  return scene.message.name + (scene.message.ownRoot ? "_unpack" : "_unpack_non_root");
}
inline Step logParameters(bool dataIsNull, uint32_t length, bool recordIsNull) {
  return [=](Expected& expected) {
    expected.log(oracle::unpackParametersLine(expected.scene().message.name + "_unpack", dataIsNull,
                                              length, recordIsNull));
  };
}
inline const Step logTableOffset = [](Expected& expected) {
  expected.log(oracle::tableOffsetLine(rootName(expected.scene()), 0, 12));
};
inline const Step logVtableOffset = [](Expected& expected) {
  expected.log(oracle::vtableOffsetLine(rootName(expected.scene()), 8, 12));
};
inline const Step logVtableLength = [](Expected& expected) {
  expected.log(oracle::vtableLengthLine(rootName(expected.scene()), 9, 8));
};

// A table without fields, and the faults that the reports name.
inline const Buffer emptyTable = Layout().u32(8).u16(4, 4).u32(4);
inline const Buffer badTable = Layout().u32(0).u16(4, 4).u32(4);
inline const Buffer badVtable = Layout().u32(8).u16(4, 4).u32(8);
inline const Buffer badVtableLength = Layout().u32(8).u16(9, 4).u32(4);
// The first slot is past the end.
inline const Buffer badSlot = Layout().u32(12).u16(6, 4, 0xFFF0, 0).u32(8);

// A table whose only field is its first nested table, 1000 bytes past the offset word.
inline Buffer badNestedTable(const Scene& scene) {
  const auto slot = static_cast<size_t>(scene.nestedTable() - scene.message.fields.data());
  Layout layout;
  const size_t vtable = (4 + 2 * (slot + 1) + 3) / 4 * 4;
  layout.u32(4 + vtable).u16(4 + 2 * (slot + 1), 8).zeros(2 * slot).u16(4);
  layout.zeros(vtable - 4 - 2 * (slot + 1)).u32(vtable, 1000);
  return layout;
}
inline const Step logNestedTable = [](Expected& expected) {
  const Scene& scene = expected.scene();
  const auto length = static_cast<uint32_t>(badNestedTable(scene).size());
  expected.log(oracle::tableOffsetLine(scene.nestedTable()->nested->name + "_unpack_non_root",
                                       length - 4 + 1000, length));
};

// The sender's only report.
inline const Step logPackToNowhere = [](Expected& expected) {
  const Scene& scene = expected.scene();
  expected.log(oracle::packParametersLine(scene.message.name + "_pack", true,
                                          static_cast<uint32_t>(scene.packed.size()), false));
};

// The receiver's blocks. The host can refuse the first.
inline oracle::UnpackResult unpacked(const Scene& scene, int failingAllocation) {
  return oracle::unpack(scene.message, scene.packed.data(),
                        static_cast<uint32_t>(scene.packed.size()), false, false,
                        failingAllocation);
}
inline const Step takeParts = [](Expected& expected) {
  expected.ofReceiving(unpacked(expected.scene(), 0).trace);
};
inline const Step giveParts = [](Expected& expected) {
  const Scene& scene = expected.scene();
  expected.ofReceiving(oracle::freeUnpacked(scene.message, unpacked(scene, 0).record));
};
// A release calls the host also for null pointers.
inline const Step giveNothing = [](Expected& expected) {
  const oracle::Description& message = expected.scene().message;
  expected.ofReceiving(oracle::freeUnpacked(message, oracle::zeroValue(message)));
};
inline const Step refusePart = [](Expected& expected) {
  expected.ofReceiving({unpacked(expected.scene(), 1).trace.at(0)});
};
inline const Step logRefusedPart = [](Expected& expected) {
  expected.log(unpacked(expected.scene(), 1).trace.at(1));
};

// Calls of the receiver.
inline const Call unpackParts = [](Scene& scene) { scene.unpack(scene.packed); };
inline Call unpack(const Buffer& bytes) {
  return [=](Scene& scene) { scene.unpack(bytes); };
}
inline Call unpackLength(uint32_t length) {
  return [=](Scene& scene) {
    scene.operations.unpack(emptyTable.data(), length, scene.received.data());
  };
}
inline const Call unpackNull = [](Scene& scene) {
  scene.operations.unpack(nullptr, 12, scene.received.data());
};
inline const Call unpackToNull = [](Scene& scene) {
  scene.operations.unpack(emptyTable.data(), 12, nullptr);
};
inline const Call unpackBadNested = [](Scene& scene) { scene.unpack(badNestedTable(scene)); };
inline const Call freeRecord = [](Scene& scene) {
  scene.operations.freeUnpacked(scene.received.data());
};
inline const Call freeNull = [](Scene& scene) { scene.operations.freeUnpacked(nullptr); };
inline const Call unpackAndFree = [](Scene& scene) {
  unpackParts(scene);
  freeRecord(scene);
};

// The sender's records: two good ones; a good and a bad one; a bad one. Bad ones have no encoding.
inline const void* good(const Scene& scene) {
  return scene.records.data();
}
inline const void* goodThenBad(const Scene& scene) {
  return scene.unencodable.data();
}
inline const void* bad(const Scene& scene) {
  return static_cast<const uint8_t*>(scene.unencodable.data()) + scene.message.recordSize;
}
inline const void* null(const Scene&) {
  return nullptr;
}
using Records = const void* (*)(const Scene&);

// The sender's calls. `more`: the room beyond the message's size.
inline Call pack(Records records, int more) {
  return [=](Scene& scene) { scene.pack(records(scene), scene.target.data(), more); };
}
inline Call packNowhere(int more) {
  return [=](Scene& scene) { scene.pack(good(scene), nullptr, more); };
}
inline const Call packNoLength = [](Scene& scene) {
  scene.operations.pack(good(scene), scene.target.data(), nullptr);
};
inline Call single(Records records, uint64_t extra = 0) {
  return [=](Scene& scene) { scene.operations.sendSingle(5, records(scene), 0xDEAD, extra); };
}
inline Call batch(Records records, uint32_t count, uint64_t extra = 0) {
  return [=](Scene& scene) { scene.operations.sendBatch(5, records(scene), count, extra); };
}
inline Call message(Records records, uint32_t count) {
  return [=](Scene& scene) { scene.operations.sendMsg(5, records(scene), count); };
}
inline Call messageTo(Records records, uint32_t count, uint64_t extra) {
  return [=](Scene& scene) { scene.operations.sendToMsg(5, records(scene), count, extra); };
}

inline Call withoutMemory(const Call& call) {
  return [=](Scene& scene) {
    recorder().everyAllocationFails = true;
    call(scene);
  };
}
inline Call refusedByMiddleware(const Call& call) {
  return [=](Scene& scene) {
    recorder().middlewareResult = 77;
    call(scene);
  };
}

}  // namespace harness::first_use
