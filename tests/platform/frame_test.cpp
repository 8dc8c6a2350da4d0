// How a node handles malformed messages, sequence numbers and unknown identifiers.
#include <vector>

#include "support/node_fixture.hpp"
#include "support/raw_sender.hpp"

namespace platform_test {
namespace {

constexpr uint32_t own = 5;

class Frame : public NodeFixture {
 protected:
  std::string endpoint() const { return "ipc://" + directory() + "/" + std::to_string(own); }

  static RawHeader header(uint64_t sequence = 1) {
    RawHeader header;
    header.destination = own;
    header.sequence = sequence;
    return header;
  }

  static std::string entry(uint32_t id, uint64_t length) {
    return littleEndian(id, 4) + littleEndian(length, 4);
  }

  // Sends a malformed message, then a good one. Expects only the good one to be delivered.
  void expectDropped(const std::vector<std::string>& parts) {
    const OpenNode node = open(own);
    RawSender sender(endpoint());
    sender.send(parts);
    sender.sendNote(header(), "good");
    const std::vector<Received> expected{{99, noteId, 0, "good", 0}};
    EXPECT_EQ(receiveNotes(node, 1), expected);
    EXPECT_EQ(statisticsOf(node).malformed, 1u);
    EXPECT_EQ(statisticsOf(node).received_calls, 1u);
  }

  // A call of one note. The test changes its header first.
  static std::vector<std::string> oneNote(RawHeader changed) {
    return {changed.bytes(), entry(noteId, 3), "abc"};
  }
  static RawHeader oneNoteHeader() {
    RawHeader one = header();
    one.count = 1;
    one.payloadBytes = 3;
    return one;
  }
};

using Node = Frame;

TEST_F(Frame, IsDecoded) {
  const OpenNode node = open(own);
  RawSender sender(endpoint());
  RawHeader two = header();
  two.extra = 0x0102030405060708;
  two.count = 2;
  two.payloadBytes = 5;
  sender.send({two.bytes(), entry(noteId, 2) + entry(otherNoteId, 3), "abcde"});
  const std::vector<Received> expected{{99, noteId, 0x0102030405060708, "ab", 0},
                                       {99, otherNoteId, 0x0102030405060708, "cde", 0}};
  EXPECT_EQ(receiveNotes(node, 2), expected);
}

TEST_F(Frame, IsDroppedWithOneEmptyPart) {
  expectDropped({""});
}

TEST_F(Frame, IsDroppedWithAHeaderOnly) {
  expectDropped({header().bytes()});
}

TEST_F(Frame, IsDroppedWithoutAPayloadPart) {
  expectDropped({header().bytes(), ""});
}

TEST_F(Frame, IsDroppedWithAFourthPart) {
  expectDropped({header().bytes(), "", "", ""});
}

TEST_F(Frame, IsDroppedWithManyParts) {
  expectDropped(std::vector<std::string>(1000, header().bytes()));
}

TEST_F(Frame, IsDroppedWithAShortHeader) {
  const std::string bytes = header().bytes();
  expectDropped({bytes.substr(0, bytes.size() - 1), "", ""});
}

TEST_F(Frame, IsDroppedWithALongHeader) {
  expectDropped({header().bytes() + '\0', "", ""});
}

TEST_F(Frame, IsDroppedWithAnEmptyHeader) {
  expectDropped({"", "", ""});
}

TEST_F(Frame, IsDroppedWithWrongMagic) {
  RawHeader other = oneNoteHeader();
  other.magic = "ZMSI";
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithUnknownVersion) {
  RawHeader other = oneNoteHeader();
  other.version = 2;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithUnknownFlags) {
  RawHeader other = oneNoteHeader();
  other.flags = 1;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWhenTheReservedWordIsNotZero) {
  RawHeader other = oneNoteHeader();
  other.zero = 1;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithSequenceZero) {
  RawHeader other = oneNoteHeader();
  other.sequence = 0;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedForAnotherDestination) {
  RawHeader other = oneNoteHeader();
  other.destination = own + 1;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithACountAboveItsIndex) {
  RawHeader other = oneNoteHeader();
  other.count = 2;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithTheLargestCount) {
  RawHeader other = oneNoteHeader();
  other.count = 0xFFFFFFFF;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithACountBelowItsIndex) {
  RawHeader other = oneNoteHeader();
  other.count = 0;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithAPartialIndexEntry) {
  expectDropped({oneNoteHeader().bytes(), entry(noteId, 3) + "x", "abc"});
}

TEST_F(Frame, IsDroppedWhenATableRunsPastThePayload) {
  expectDropped({oneNoteHeader().bytes(), entry(noteId, 4), "abc"});
}

TEST_F(Frame, IsDroppedWhenTheTablesEndBeforeThePayload) {
  expectDropped({oneNoteHeader().bytes(), entry(noteId, 2), "abc"});
}

TEST_F(Frame, IsDroppedWhenTheLengthSumWrapsAt32Bits) {
  RawHeader other = oneNoteHeader();
  other.count = 2;
  expectDropped({other.bytes(), entry(noteId, 0xFFFFFFFF) + entry(noteId, 4), "abc"});
}

TEST_F(Frame, IsDroppedWithAWrongPayloadSize) {
  RawHeader other = oneNoteHeader();
  other.payloadBytes = 4;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedAboveThePayloadLimitOverInproc) {
  // Over inproc ZeroMQ does not limit sizes, but the node does.
  mesh_node_options small = defaults();
  small.transport = MESH_TRANSPORT_INPROC;
  small.payload_limit = 100;
  mesh_node_options large = small;
  large.payload_limit = 1000;
  const OpenNode sender = open(1, large);
  const OpenNode receiver = open(2, small);
  ASSERT_EQ(sendNotes(2, {std::string(101, 'a')}), MESH_OK);
  EXPECT_EQ(receiveUntil(receiver, &mesh_node_statistics::malformed, 1), 1u);
  EXPECT_EQ(statisticsOf(receiver).received_records, 0u);
}

TEST_F(Frame, IsDroppedAboveTheTableLimitOverInproc) {
  mesh_node_options small = defaults();
  small.transport = MESH_TRANSPORT_INPROC;
  small.payload_limit = 100;
  mesh_node_options large = small;
  large.payload_limit = 1000;
  const OpenNode sender = open(1, large);
  const OpenNode receiver = open(2, small);
  ASSERT_EQ(sendNotes(2, std::vector<std::string>(13)), MESH_OK);
  EXPECT_EQ(receiveUntil(receiver, &mesh_node_statistics::malformed, 1), 1u);
  EXPECT_EQ(statisticsOf(receiver).received_records, 0u);
}

TEST_F(Frame, IsRejectedByZeroMqAboveThePayloadLimit) {
  mesh_node_options small = defaults();
  small.payload_limit = 1000;
  const OpenNode node = open(own, small);
  RawHeader large = header();
  large.count = 1;
  large.payloadBytes = 1001;
  {
    RawSender sender(endpoint());
    sender.send({large.bytes(), entry(noteId, 1001), std::string(1001, 'a')});
    EXPECT_EQ(mesh_node_receive(node, 300, nullptr, nullptr), 0);
  }
  RawSender sender(endpoint());
  sender.sendNote(header(), "good");
  EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
  EXPECT_EQ(statisticsOf(node).received_calls, 1u);
  // ZeroMQ dropped it: the node never saw it.
  EXPECT_EQ(statisticsOf(node).malformed, 0u);
}

TEST_F(Node, CountsLostCalls) {
  const OpenNode node = open(own);
  RawSender sender(endpoint());
  for (const uint64_t sequence : {1u, 2u, 5u, 6u, 8u}) {
    sender.sendNote(header(sequence), "a");
  }
  EXPECT_EQ(receiveNotes(node, 5).size(), 5u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 3u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 0u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 0u);
}

TEST_F(Node, CountsCallsMissedBeforeTheFirst) {
  const OpenNode node = open(own);
  RawSender sender(endpoint());
  sender.sendNote(header(11), "a");
  sender.sendNote(header(12), "b");
  EXPECT_EQ(receiveNotes(node, 2).size(), 2u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 10u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
}

TEST_F(Node, DeliversAndCountsDuplicateAndLateCalls) {
  const OpenNode node = open(own);
  RawSender sender(endpoint());
  for (const uint64_t sequence : {1u, 3u, 3u, 2u, 4u}) {
    sender.sendNote(header(sequence), std::to_string(sequence));
  }
  EXPECT_EQ(receiveNotes(node, 5).size(), 5u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 2u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 1u);
}

TEST_F(Node, AcceptsTheLargestSequenceNumber) {
  const OpenNode node = open(own);
  RawSender sender(endpoint());
  sender.sendNote(header(1), "a");
  sender.sendNote(header(UINT64_MAX), "b");
  sender.sendNote(header(UINT64_MAX), "c");
  EXPECT_EQ(receiveNotes(node, 3).size(), 3u);
  EXPECT_EQ(statisticsOf(node).lost_calls, UINT64_MAX - 2);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 1u);
}

TEST_F(Node, TracksEachIncarnationSeparately) {
  const OpenNode node = open(own);
  RawSender sender(endpoint());
  for (const uint64_t incarnation : {1u, 2u, 3u}) {
    for (const uint64_t sequence : {1u, 2u}) {
      RawHeader call = header(sequence);
      call.incarnation = incarnation;
      sender.sendNote(call, "a");
    }
  }
  EXPECT_EQ(receiveNotes(node, 6).size(), 6u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 0u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 0u);
}

TEST_F(Node, ForgetsTheOldestOfMoreThan1024Incarnations) {
  const OpenNode node = open(own);
  RawSender sender(endpoint());
  const auto sendAs = [&](uint64_t incarnation, uint64_t sequence) {
    RawHeader call = header(sequence);
    call.incarnation = incarnation;
    sender.sendNote(call, "a");
  };
  sendAs(1, 1);
  sendAs(2, 1);
  for (uint64_t other = 3; other <= 1024; ++other) {
    sendAs(other, 1);
  }
  sendAs(1, 2);     // used again: now 2 is the oldest
  sendAs(1025, 1);  // replaces 2
  sendAs(1, 3);
  EXPECT_EQ(receiveNotes(node, 1027).size(), 1027u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 0u);
  sendAs(2, 2);  // counts as new
  EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 1u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
}

TEST_F(Node, CountsUnknownIdentifiersAndDeliversTheRest) {
  const OpenNode node = open(own);
  const char text[] = "abc";
  const auto at = reinterpret_cast<uintptr_t>(text);
  const mesh_msg_desc descriptors[] = {
      {at, 0xDEAD, 1}, {at + 1, noteId, 1}, {at, 0xDEAD, 3}, {at + 2, noteId, 1}};
  ASSERT_EQ(MESH_SendMsg(own, descriptors, 4), MESH_OK);
  const std::vector<Received> expected{{own, noteId, 0, "b", 0}, {own, noteId, 0, "c", 0}};
  EXPECT_EQ(receiveNotes(node, 2), expected);
  EXPECT_EQ(statisticsOf(node).unknown_identifiers, 2u);
  EXPECT_EQ(statisticsOf(node).received_records, 2u);
  EXPECT_EQ(statisticsOf(node).malformed, 0u);
}

TEST_F(Node, CallsTheUnknownHook) {
  std::vector<Received> unknown;
  mesh_node_options options = defaults();
  options.unknown_user = &unknown;
  options.unknown = [](uint32_t source, uint32_t id, const uint8_t* data, uint32_t length,
                       void* user) {
    static_cast<std::vector<Received>*>(user)->push_back(
        {source, id, 0, std::string(reinterpret_cast<const char*>(data), length), 0});
  };
  const OpenNode node = open(own, options);
  ASSERT_EQ(sendNotes(own, {"what", "is this"}, 0, 0xDEAD), MESH_OK);
  EXPECT_EQ(receiveUntil(node, &mesh_node_statistics::unknown_identifiers, 2), 2u);
  const std::vector<Received> expected{{own, 0xDEAD, 0, "what", 0}, {own, 0xDEAD, 0, "is this", 0}};
  EXPECT_EQ(unknown, expected);
}

}  // namespace
}  // namespace platform_test
