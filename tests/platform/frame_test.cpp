// How a node handles malformed messages, sequence numbers and unknown identifiers.
#include <chrono>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "support/node_fixture.hpp"
#include "support/raw_sender.hpp"

namespace platform_test {
namespace {

class Frame : public NodeFixture {
 protected:
  std::string endpoint() const { return "ipc://" + directory() + "/" + std::to_string(ownNode); }

  static RawHeader header(uint64_t sequence = 1) {
    RawHeader header;
    header.destination = ownNode;
    header.sequence = sequence;
    return header;
  }

  static std::string entry(uint32_t id, uint64_t length) {
    return littleEndian(id, 4) + littleEndian(length, 4);
  }

  // Sends a malformed message, then a good one. Expects only the good one to be delivered.
  void expectDropped(const std::vector<std::string>& parts) {
    const OpenNode node = open(ownNode);
    RawSender sender(endpoint());
    sender.send(parts);
    sender.sendNote(header(), "good");
    const std::vector<Received> expected{{99, noteId, 0, "good", 0}};
    EXPECT_EQ(receiveNotes(node, 1), expected);
    EXPECT_EQ(statisticsOf(node).malformed, 1u);
    EXPECT_EQ(statisticsOf(node).received_calls, 1u);
  }

  // A call of one note. The test changes its header first.
  static std::vector<std::string> oneNote(const RawHeader& changed) {
    return {changed.bytes() + entry(noteId, 3) + "abc"};
  }
  static RawHeader oneNoteHeader() {
    RawHeader one = header();
    one.count = 1;
    one.payloadBytes = 3;
    return one;
  }
};

using Node = Frame;

// Calls of the address, as far as the node remembers.
uint64_t receivedFrom(mesh_node* node, uint32_t address) {
  mesh_peer_statistics peers[8];
  uint32_t count = 0;
  EXPECT_EQ(mesh_node_peers(node, peers, std::size(peers), &count), MESH_OK);
  for (uint32_t peer = 0; peer < std::min<uint32_t>(count, std::size(peers)); ++peer) {
    if (peers[peer].address == address) {
      return peers[peer].received_calls;
    }
  }
  return 0;
}

TEST_F(Frame, IsDecoded) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  RawHeader two = header();
  two.extra = 0x0102030405060708;
  two.count = 2;
  two.payloadBytes = 5;
  sender.send({two.bytes() + entry(noteId, 2) + entry(otherNoteId, 3) + "abcde"});
  const std::vector<Received> expected{{99, noteId, 0x0102030405060708, "ab", 0},
                                       {99, otherNoteId, 0x0102030405060708, "cde", 0}};
  EXPECT_EQ(receiveNotes(node, 2), expected);
}

TEST_F(Frame, IsDroppedWithOneEmptyPart) {
  expectDropped({""});
}

TEST_F(Frame, IsDroppedWithAHeaderOnly) {
  expectDropped({oneNoteHeader().bytes()});
}

TEST_F(Frame, IsDroppedInTwoParts) {
  expectDropped({oneNoteHeader().bytes(), entry(noteId, 3) + "abc"});
}

TEST_F(Frame, IsDroppedBehindAnEmptyPart) {
  expectDropped({"", oneNote(oneNoteHeader())[0]});
}

TEST_F(Frame, IsDroppedWithManyParts) {
  expectDropped(std::vector<std::string>(1000, header().bytes()));
}

TEST_F(Frame, IsDroppedWithAShortHeader) {
  const std::string bytes = header().bytes();
  expectDropped({bytes.substr(0, bytes.size() - 1)});
}

TEST_F(Frame, IsDroppedWithAByteTooMany) {
  expectDropped({oneNote(oneNoteHeader())[0] + '\0'});
}

TEST_F(Frame, IsDroppedWithWrongMagic) {
  RawHeader other = oneNoteHeader();
  other.magic = "ZMSI";
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithUnknownVersion) {
  RawHeader other = oneNoteHeader();
  other.version = 4;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithUnknownFlags) {
  RawHeader other = oneNoteHeader();
  other.flags = 2;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithUnknownKind) {
  RawHeader other = oneNoteHeader();
  other.kind = 3;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWhenItIsAnAnswer) {
  RawHeader other = header();
  other.kind = 2;
  expectDropped({other.bytes() + littleEndian(1, 8) + littleEndian(0, 8) + littleEndian(0, 8)});
}

TEST_F(Frame, IsDroppedWhenASyncHasTables) {
  RawHeader other = oneNoteHeader();
  other.kind = 1;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWhenItConfirmsItself) {
  RawHeader other = oneNoteHeader();
  other.confirmed = 1;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedWithSequenceZero) {
  RawHeader other = oneNoteHeader();
  other.sequence = 0;
  expectDropped(oneNote(other));
}

TEST_F(Frame, IsDroppedForAnotherDestination) {
  RawHeader other = oneNoteHeader();
  other.destination = ownNode + 1;
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
  expectDropped({oneNoteHeader().bytes() + entry(noteId, 3) + "x" + "abc"});
}

TEST_F(Frame, IsDroppedWhenATableRunsPastThePayload) {
  expectDropped({oneNoteHeader().bytes() + entry(noteId, 4) + "abc"});
}

TEST_F(Frame, IsDroppedWhenTheTablesEndBeforeThePayload) {
  expectDropped({oneNoteHeader().bytes() + entry(noteId, 2) + "abc"});
}

TEST_F(Frame, IsDroppedWhenTheLengthSumWrapsAt32Bits) {
  RawHeader other = oneNoteHeader();
  other.count = 2;
  expectDropped({other.bytes() + entry(noteId, 0xFFFFFFFF) + entry(noteId, 4) + "abc"});
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
  OpenNode sender = open(1, large);
  const OpenNode receiver = open(2, small);
  ASSERT_EQ(sendNotes(2, {std::string(101, 'a')}), MESH_OK);
  EXPECT_EQ(receiveUntil(receiver, &mesh_node_statistics::malformed, 1), 1u);
  EXPECT_EQ(statisticsOf(receiver).received_records, 0u);
  EXPECT_EQ(sender.close(), MESH_UNDELIVERED);
}

TEST_F(Frame, IsDroppedAboveTheTableLimitOverInproc) {
  mesh_node_options small = defaults();
  small.transport = MESH_TRANSPORT_INPROC;
  small.payload_limit = 100;
  mesh_node_options large = small;
  large.payload_limit = 1000;
  OpenNode sender = open(1, large);
  const OpenNode receiver = open(2, small);
  ASSERT_EQ(sendNotes(2, std::vector<std::string>(13)), MESH_OK);
  EXPECT_EQ(receiveUntil(receiver, &mesh_node_statistics::malformed, 1), 1u);
  EXPECT_EQ(statisticsOf(receiver).received_records, 0u);
  EXPECT_EQ(sender.close(), MESH_UNDELIVERED);
}

TEST_F(Frame, IsRejectedByZeroMqAboveThePayloadLimit) {
  mesh_node_options small = defaults();
  small.payload_limit = 1000;
  const OpenNode node = open(ownNode, small);
  RawHeader large = header();
  large.count = 1;
  large.payloadBytes = 10000;
  {
    RawSender sender(endpoint());
    sender.send({large.bytes() + entry(noteId, 10000) + std::string(10000, 'a')});
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
  const OpenNode node = open(ownNode);
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
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  sender.sendNote(header(11), "a");
  sender.sendNote(header(12), "b");
  EXPECT_EQ(receiveNotes(node, 2).size(), 2u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 10u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
  mesh_peer_statistics peer;
  uint32_t count = 0;
  ASSERT_EQ(mesh_node_peers(node, &peer, 1, &count), MESH_OK);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(peer.missed_before_first, 10u);
}

TEST_F(Node, DeliversAndCountsDuplicateAndLateCalls) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  for (const uint64_t sequence : {1u, 3u, 3u, 2u, 6u, 5u, 4u}) {
    sender.sendNote(header(sequence), std::to_string(sequence));
  }
  EXPECT_EQ(receiveNotes(node, 7).size(), 7u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 1u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u) << "calls 2, 5 and 4 were late";
}

// Otherwise its sender would count the call as delivered.
TEST_F(Node, TellsOfALateCallThatWaits) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  RawHeader call = header(1);
  call.flags = 1;
  for (const uint64_t sequence : {1u, 3u, 2u}) {
    call.sequence = sequence;
    sender.sendNote(call, "a");
  }
  const auto expectState = [&](uint64_t confirmed, uint64_t missing) {
    const std::string state = sender.receive();
    EXPECT_EQ(state.substr(32, 16), littleEndian(confirmed, 8) + littleEndian(missing, 8));
  };
  expectState(0, 0);
  const Deadline deadline;
  while (statisticsOf(node).received_calls < 3 && !deadline.passed()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  const std::pair<uint64_t, uint64_t> states[] = {{1, 0}, {3, 1}, {3, 0}};
  for (const auto& [confirmed, missing] : states) {
    ASSERT_EQ(receiveNotes(node, 1).size(), 1u);
    expectState(confirmed, missing);
  }
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
}

// A late call comes from a connection that broke.
TEST_F(Node, AnswersOverTheLatestConnectionAfterALateCall) {
  const OpenNode node = open(ownNode);
  const auto deliver = [&](RawSender& sender, uint64_t sequence) {
    RawHeader call = header(sequence);
    call.flags = 1;
    sender.sendNote(call, "a");
    EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
  };
  RawSender earlier(endpoint());
  deliver(earlier, 1);
  earlier.receive();
  earlier.receive();
  RawSender later(endpoint());
  deliver(later, 3);
  later.receive();
  deliver(earlier, 2);
  EXPECT_EQ(later.receive().substr(32, 16), littleEndian(3, 8) + littleEndian(0, 8));
}

TEST_F(Node, RemembersSomeGapsOfASender) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  sender.sendNote(header(1), "a");
  sender.sendNote(header(2000), "b");
  // Each is in the middle of the latest gap, and makes two of it.
  constexpr size_t late = 40;
  for (uint64_t call = 1; call <= late; ++call) {
    sender.sendNote(header(10 * call), "c");
  }
  EXPECT_EQ(receiveNotes(node, 2 + late).size(), 2 + late);
  constexpr uint64_t remembered = 32;
  EXPECT_EQ(statisticsOf(node).lost_calls, 1998u - remembered);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, late - remembered) << "of a forgotten gap";
}

TEST_F(Node, DropsCallsThatClaimImpossibleLosses) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  sender.sendNote(header(1), "a");
  sender.sendNote(header(UINT64_MAX), "b");
  RawHeader confirming = header(UINT64_MAX);
  confirming.confirmed = UINT64_MAX - 1;
  sender.sendNote(confirming, "c");
  sender.sendNote(header(2), "d");
  const std::vector<Received> notes = receiveNotes(node, 2);
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_EQ(notes[1].text, "d");
  EXPECT_EQ(statisticsOf(node).malformed, 2u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
}

TEST_F(Node, AcceptsTheLargestSequenceNumber) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  RawHeader last = header(UINT64_MAX);
  last.confirmed = UINT64_MAX - 3;
  sender.sendNote(last, "a");
  sender.sendNote(last, "b");
  EXPECT_EQ(receiveNotes(node, 2).size(), 2u);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 2u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 1u);
}

TEST_F(Node, FillsAGapUpToTheLargestSequenceNumberOnce) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  RawHeader call = header(UINT64_MAX - 10);
  call.confirmed = call.sequence - 1;
  sender.sendNote(call, "a");
  call.sequence = UINT64_MAX;
  RawHeader sync = call;
  sync.kind = 1;
  sender.send({sync.bytes()});
  constexpr uint64_t late = 12;
  for (uint64_t i = 0; i < late; ++i) {
    sender.sendNote(call, "b");
  }
  EXPECT_EQ(receiveNotes(node, 1 + late).size(), 1 + late);
  EXPECT_EQ(statisticsOf(node).lost_calls, 9u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, late - 1);
}

TEST_F(Node, TracksEachIncarnationSeparately) {
  const OpenNode node = open(ownNode);
  for (const uint64_t incarnation : {1u, 2u, 3u}) {
    RawSender sender(endpoint());
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

TEST_F(Node, HearsOneSenderOverEachConnection) {
  const OpenNode node = open(ownNode);
  RawSender sender(endpoint());
  sender.sendNote(header(1), "a");
  RawHeader other = header(1);
  other.incarnation = 2;
  sender.sendNote(other, "of another");
  other = header(1);
  other.source = 98;
  sender.sendNote(other, "of another");
  sender.sendNote(header(2), "b");
  const std::vector<Received> notes = receiveNotes(node, 2);
  ASSERT_EQ(notes.size(), 2u);
  EXPECT_EQ(notes[1].text, "b");
  EXPECT_EQ(statisticsOf(node).malformed, 2u);
}

// More than the 1,024 books after which those of gone senders are forgotten.
TEST_F(Node, RemembersAllLiveSenders) {
  const OpenNode node = open(ownNode);
  constexpr uint64_t senders = 1500;
  std::vector<std::unique_ptr<RawSender>> alive;
  const auto sendFromAll = [&](uint64_t sequence) {
    for (uint64_t incarnation = 0; incarnation < senders; ++incarnation) {
      RawHeader call = header(sequence);
      call.incarnation = incarnation + 1;
      alive[incarnation]->sendNote(call, "a");
    }
  };
  for (uint64_t sender = 0; sender < senders; ++sender) {
    alive.push_back(std::make_unique<RawSender>(endpoint()));
  }
  sendFromAll(1);
  EXPECT_EQ(receiveNotes(node, senders).size(), senders);
  sendFromAll(2);
  EXPECT_EQ(receiveNotes(node, senders).size(), senders);
  EXPECT_EQ(statisticsOf(node).missed_before_first, 0u);
  EXPECT_EQ(statisticsOf(node).lost_calls, 0u);
  EXPECT_EQ(statisticsOf(node).duplicate_calls, 0u);
}

TEST_F(Node, ForgetsSendersThatAreGone) {
  const OpenNode node = open(ownNode);
  constexpr uint64_t senders = 3000;
  for (uint64_t sender = 1; sender <= senders; ++sender) {
    RawSender gone(endpoint());
    RawHeader call = header();
    call.incarnation = sender;
    gone.sendNote(call, "a");
    ASSERT_EQ(receiveNotes(node, 1).size(), 1u);
  }
  uint32_t known = 0;
  ASSERT_EQ(mesh_node_peers(node, nullptr, 0, &known), MESH_OK);
  EXPECT_EQ(known, 1u) << "they have one address";
  EXPECT_LT(receivedFrom(node, 99), senders);
}

TEST_F(Node, CountsUnknownIdentifiersAndDeliversTheRest) {
  const OpenNode node = open(ownNode);
  const char text[] = "abc";
  const auto at = reinterpret_cast<uintptr_t>(text);
  const mesh_msg_desc descriptors[] = {
      {at, 0xDEAD, 1}, {at + 1, noteId, 1}, {at, 0xDEAD, 3}, {at + 2, noteId, 1}};
  ASSERT_EQ(MESH_SendMsg(ownNode, descriptors, 4), MESH_OK);
  const std::vector<Received> expected{{ownNode, noteId, 0, "b", 0}, {ownNode, noteId, 0, "c", 0}};
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
  const OpenNode node = open(ownNode, options);
  ASSERT_EQ(sendNotes(ownNode, {"what", "is this"}, 0, 0xDEAD), MESH_OK);
  EXPECT_EQ(receiveUntil(node, &mesh_node_statistics::unknown_identifiers, 2), 2u);
  const std::vector<Received> expected{{ownNode, 0xDEAD, 0, "what", 0},
                                       {ownNode, 0xDEAD, 0, "is this", 0}};
  EXPECT_EQ(unknown, expected);
}

}  // namespace
}  // namespace platform_test
