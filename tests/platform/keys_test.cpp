// Nodes with keys: over tcp they accept only peers with a known key.
#include <sys/stat.h>

#include <fstream>
#include <list>
#include <string>
#include <vector>

#include "support/child_process.hpp"
#include "support/free_port.hpp"
#include "support/node_fixture.hpp"
#include "support/raw_connection.hpp"
#include "support/raw_sender.hpp"

namespace platform_test {
namespace {

class Keys : public NodeFixture {
 protected:
  Keys() {
    book_ = "1 " + tcpEndpoint(freePort()) + "\n2 " + endpoint_ + "\n";
    writeKeys("one", {"own " + one_.publicKey + " " + one_.secretKey, "node 2 " + two_.publicKey});
    writeKeys("two", {"own " + two_.publicKey + " " + two_.secretKey, "node 1 " + one_.publicKey});
  }

  std::string path(const std::string& name) const { return directory() + "/" + name; }

  void writeKeys(const std::string& name, const std::vector<std::string>& lines,
                 mode_t mode = 0600) const {
    std::ofstream file(path(name));
    for (const std::string& line : lines) {
      file << line << "\n";
    }
    file.close();
    EXPECT_EQ(chmod(path(name).c_str(), mode), 0);
  }

  OpenNode openWith(uint32_t address, const std::string& keys) {
    paths_.push_back(path(keys));
    mesh_node_options options = impatient();
    options.address_book = book_.c_str();
    options.key_file = paths_.back().c_str();
    return open(address, options);
  }

  std::string errorOf(const std::vector<std::string>& lines, mode_t mode = 0600) const {
    writeKeys("wrong", lines, mode);
    const std::string file = path("wrong");
    mesh_node_options options = impatient();
    options.key_file = file.c_str();
    EXPECT_EQ(resultOfOpening(1, options), MESH_BAD_CONFIGURATION);
    return mesh_node_last_error();
  }

  static RawHeader from(uint32_t source) {
    RawHeader header;
    header.source = source;
    header.destination = 2;
    return header;
  }

  // No message arrives, not even a malformed one.
  static void expectNothing(mesh_node* node) {
    EXPECT_EQ(mesh_node_receive(node, 250, nullptr, nullptr), 0);
    EXPECT_EQ(statisticsOf(node).malformed, 0u);
  }

  const KeyPair one_ = newKeyPair();
  const KeyPair two_ = newKeyPair();
  const uint16_t port_ = freePort();
  const std::string endpoint_ = tcpEndpoint(port_);
  std::string book_;
  std::list<std::string> paths_;
};

TEST_F(Keys, LetKnownNodesTalk) {
  const OpenNode one = openWith(1, "one");
  const OpenNode two = openWith(2, "two");
  ASSERT_EQ(sendNotes(2, {"a", "b"}, 7), MESH_OK) << mesh_node_last_error();
  const std::vector<Received> expected{{1, noteId, 7, "a", 0}, {1, noteId, 7, "b", 0}};
  EXPECT_EQ(receiveNotes(two, 2), expected);
  ASSERT_EQ(mesh_node_attach(two), MESH_OK);
  ASSERT_EQ(sendNotes(1, {"c"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(one, 1).size(), 1u);
}

TEST_F(Keys, LetANodeTalkToItself) {
  writeKeys("two", {"own " + two_.publicKey + " " + two_.secretKey, "node 2 " + two_.publicKey});
  const OpenNode two = openWith(2, "two");
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(two, 1).size(), 1u);
}

TEST_F(Keys, RejectAPeerWithoutKeys) {
  const OpenNode two = openWith(2, "two");
  RawSender sender(endpoint_);
  sender.discardUnsent();
  sender.sendNote(from(1), "open");
  expectNothing(two);
  RawConnection byHand(port_);
  static_cast<void>(byHand.sendPart(from(1).bytes(), false));
  expectNothing(two);
  const Deadline deadline;
  while (statisticsOf(two).refused_connections < 2 && !deadline.passed()) {
    static_cast<void>(mesh_node_receive(two, 20, nullptr, nullptr));
  }
  EXPECT_GE(statisticsOf(two).refused_connections, 2u);
}

TEST_F(Keys, RejectANodeWithoutKeys) {
  const OpenNode two = openWith(2, "two");
  mesh_node_options options = impatient();
  options.address_book = book_.c_str();
  const OpenNode one = open(1, options);
  ASSERT_EQ(mesh_node_attach(one), MESH_OK);
  EXPECT_EQ(sendNotes(2, {"open"}), MESH_NO_DESTINATION);
  expectNothing(two);
}

TEST_F(Keys, RejectAnUnknownKey) {
  const OpenNode two = openWith(2, "two");
  RawSender sender(endpoint_, two_.publicKey, newKeyPair());
  sender.sendNote(from(1), "unknown key");
  expectNothing(two);
}

TEST_F(Keys, RejectAPublicKeyWithoutItsSecret) {
  const OpenNode two = openWith(2, "two");
  RawSender sender(endpoint_, two_.publicKey, {one_.publicKey, newKeyPair().secretKey});
  sender.sendNote(from(1), "wrong secret");
  expectNothing(two);
}

TEST_F(Keys, RejectAnImpostorReceiver) {
  // Another receiver has node 2's endpoint.
  const KeyPair impostor = newKeyPair();
  writeKeys("impostor",
            {"own " + impostor.publicKey + " " + impostor.secretKey, "node 1 " + one_.publicKey});
  const OpenNode two = openWith(2, "impostor");
  const OpenNode one = openWith(1, "one");
  ASSERT_EQ(mesh_node_attach(one), MESH_OK);
  EXPECT_EQ(sendNotes(2, {"secret"}), MESH_NO_DESTINATION);
  expectNothing(two);
}

TEST_F(Keys, RejectAnotherNodesAddress) {
  const OpenNode two = openWith(2, "two");
  RawSender sender(endpoint_, two_.publicKey, one_);
  sender.sendNote(from(3), "from another node");
  sender.sendNote(from(2), "from the receiver");
  sender.sendNote(from(1), "from itself");
  const std::vector<Received> expected{{1, noteId, 0, "from itself", 0}};
  EXPECT_EQ(receiveNotes(two, 1), expected);
  EXPECT_EQ(statisticsOf(two).malformed, 2u);
}

TEST_F(Keys, AreSeparateForEachNode) {
  // Node 1 knows the key; node 2 of the same process does not.
  const KeyPair stranger = newKeyPair();
  writeKeys("one",
            {"own " + one_.publicKey + " " + one_.secretKey, "node 3 " + stranger.publicKey});
  const OpenNode one = openWith(1, "one");
  const OpenNode two = openWith(2, "two");
  RawSender sender(endpoint_, two_.publicKey, stranger);
  sender.sendNote(from(3), "unknown to node 2");
  expectNothing(two);
}

TEST_F(Keys, AreRequiredForTheDestination) {
  writeKeys("one", {"own " + one_.publicKey + " " + one_.secretKey});
  const OpenNode one = openWith(1, "one");
  EXPECT_EQ(sendNotes(2, {"a"}), MESH_BAD_CONFIGURATION);
  EXPECT_NE(std::string(mesh_node_last_error()).find("node 2"), std::string::npos);
}

TEST_F(Keys, AllowNonLoopbackAddresses) {
  book_ = "2 tcp://0.0.0.0:" + std::to_string(port_) + "\n";
  const OpenNode two = openWith(2, "two");
  RawSender sender(endpoint_, two_.publicKey, one_);
  sender.sendNote(from(1), "a");
  EXPECT_EQ(receiveNotes(two, 1).size(), 1u);
  RawSender stranger(endpoint_, two_.publicKey, newKeyPair());
  stranger.sendNote(from(1), "b");
  expectNothing(two);
}

TEST_F(Keys, AreReadFromTheEnvironmentsFile) {
  setenv("ZARNIMESH_KEYS", path("two").c_str(), 1);
  mesh_node_options options = impatient();
  options.address_book = book_.c_str();
  const OpenNode two = open(2, options);
  unsetenv("ZARNIMESH_KEYS");
  RawSender stranger(endpoint_);
  stranger.discardUnsent();
  stranger.sendNote(from(1), "open");
  expectNothing(two);
}

TEST_F(Keys, AreRejectedWhenOpenToOthers) {
  const std::string own = "own " + one_.publicKey + " " + one_.secretKey;
  for (const mode_t mode : {0640u, 0604u, 0620u}) {
    EXPECT_NE(errorOf({own}, mode).find("open to other users"), std::string::npos);
  }
}

TEST_F(Keys, AreRejectedWithABadLine) {
  const std::string own = "own " + one_.publicKey + " " + one_.secretKey;
  EXPECT_NE(errorOf({"# nothing"}).find("own line is missing"), std::string::npos);
  EXPECT_NE(errorOf({own, own}).find("line 2: there must be one own line"), std::string::npos);
  EXPECT_NE(errorOf({"own " + two_.publicKey + " " + one_.secretKey}).find("line 1"),
            std::string::npos)
      << "a public key of another pair";
  const std::string shortKey = two_.publicKey.substr(1);
  for (const std::string& line :
       {std::string("own"), std::string("node 2"), "node 2 " + shortKey, "node x " + two_.publicKey,
        "node 2 " + two_.publicKey + "\nnode 2 " + one_.publicKey,
        "node 2 " + two_.publicKey + "\nnode 3 " + two_.publicKey, "peer 2 " + two_.publicKey,
        "node 2 " + two_.publicKey + " more", "node 2 " + shortKey + "~"}) {
    EXPECT_NE(errorOf({own, "# two", line}).find(", line "), std::string::npos) << line;
  }
  mesh_node_options options = impatient();
  options.key_file = "/nowhere/keys";
  EXPECT_EQ(resultOfOpening(1, options), MESH_BAD_CONFIGURATION);
}

TEST_F(Keys, AreMadeByZarnimeshKeys) {
  std::vector<std::string> lines;
  for (const std::string name : {"1", "2"}) {
    ChildProcess maker({ZARNIMESH_KEYS_PROGRAM, name, path("made" + name)});
    lines.push_back(maker.readLine());
    EXPECT_EQ(maker.wait(), 0);
    struct stat status;
    ASSERT_EQ(stat(path("made" + name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
  }
  EXPECT_EQ(lines[0].find("node 1 "), 0u);
  std::ofstream(path("made1"), std::ios::app) << lines[1] << "\n";
  std::ofstream(path("made2"), std::ios::app) << lines[0] << "\n";
  const OpenNode one = openWith(1, "made1");
  const OpenNode two = openWith(2, "made2");
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(two, 1).size(), 1u);
  ChildProcess again({ZARNIMESH_KEYS_PROGRAM, "1", path("made1")}, true);
  EXPECT_EQ(again.wait(), 1) << "an existing file is kept";
}

}  // namespace
}  // namespace platform_test
