// Endpoints of nodes: address book, tcp, private directory.
#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <fstream>
#include <vector>

#include "support/free_port.hpp"
#include "support/node_fixture.hpp"

namespace platform_test {
namespace {

using AddressBook = NodeFixture;
using Tcp = NodeFixture;
using RuntimeDirectory = NodeFixture;

mesh_node_options withBook(const std::string& text) {
  mesh_node_options options = impatient();
  options.address_book = text.c_str();
  return options;
}

std::string errorOfBook(const std::string& text) {
  mesh_node* node = nullptr;
  const mesh_node_options options = withBook(text);
  EXPECT_EQ(mesh_node_open(1, &options, &node), MESH_BAD_CONFIGURATION) << text;
  EXPECT_EQ(node, nullptr);
  return mesh_node_last_error();
}

TEST_F(AddressBook, ReadsAddressesCommentsAndBlanks) {
  const std::string book = "# nodes\n\n  1\tipc://" + directory() +
                           "/one # the first\r\n0xA ipc://" + directory() +
                           "/ten\n   \n0XFFFFFFFF inproc://last";
  const mesh_node_options options = withBook(book);
  const OpenNode one = open(1, options);
  const OpenNode ten = open(10, options);
  const OpenNode last = open(0xFFFFFFFF, options);
  struct stat status;
  EXPECT_EQ(stat((directory() + "/one").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_EQ(stat((directory() + "/ten").c_str(), &status), 0);
  for (mesh_node* node : {static_cast<mesh_node*>(ten), static_cast<mesh_node*>(last)}) {
    ASSERT_EQ(sendNotes(node == ten ? 10 : 0xFFFFFFFF, {"a"}), MESH_OK) << mesh_node_last_error();
    EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
  }
}

// The modes of Unix sockets when they start to listen. Our listen() below fills it.
std::vector<mode_t> modesWhenListening;

// From listen() on, the mode decides who can connect.
TEST_F(AddressBook, SetsSocketModeBeforeListen) {
  const std::string book = "1 ipc://" + directory() + "/one";
  modesWhenListening.clear();
  const mode_t before = umask(0);
  const OpenNode node = open(1, withBook(book));
  umask(before);
  EXPECT_EQ(modesWhenListening, std::vector<mode_t>({0600}));
}

TEST_F(AddressBook, KeepsAFileThatIsNotASocket) {
  const std::string precious = directory() + "/precious";
  std::ofstream(precious) << "kept";
  const std::string error = errorOfBook("1 ipc://" + precious);
  EXPECT_NE(error.find(precious), std::string::npos) << error;
  std::string left;
  std::ifstream(precious) >> left;
  EXPECT_EQ(left, "kept");
}

TEST_F(AddressBook, UsesTheDefaultForOtherAddresses) {
  const std::string book = "1 inproc://one\n";
  const OpenNode named = open(1, withBook(book));
  const OpenNode unnamed = open(2, withBook(book));
  struct stat status;
  EXPECT_EQ(stat((directory() + "/2").c_str(), &status), 0);
  ASSERT_EQ(sendNotes(2, {"a"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(unnamed, 1).size(), 1u);
}

TEST_F(AddressBook, IsReadFromTheEnvironmentsFile) {
  const std::string path = directory() + "/book";
  std::ofstream(path) << "1 ipc://" << directory() << "/from-file\n";
  setenv("ZARNIMESH_ADDRESS_BOOK", path.c_str(), 1);
  const OpenNode node = open(1);
  struct stat status;
  EXPECT_EQ(stat((directory() + "/from-file").c_str(), &status), 0);
}

TEST_F(AddressBook, ReportsFileAndLineOfAnError) {
  const std::string path = directory() + "/book";
  std::ofstream(path) << "1 inproc://one\n\nnonsense\n";
  setenv("ZARNIMESH_ADDRESS_BOOK", path.c_str(), 1);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_BAD_CONFIGURATION);
  EXPECT_NE(std::string(mesh_node_last_error()).find(path + ", line 3:"), std::string::npos)
      << mesh_node_last_error();
}

TEST_F(AddressBook, RejectsAMissingEnvironmentsFile) {
  setenv("ZARNIMESH_ADDRESS_BOOK", (directory() + "/absent").c_str(), 1);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_BAD_CONFIGURATION);
  setenv("ZARNIMESH_ADDRESS_BOOK", directory().c_str(), 1);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_BAD_CONFIGURATION);
}

TEST_F(AddressBook, RejectsBadLines) {
  const char* const lines[] = {
      "x inproc://a",
      "-1 inproc://a",
      "4294967296 inproc://a",
      "0x inproc://a",
      "0x100000000 inproc://a",
      "12z inproc://a",
      "2",
      "2 # inproc://a",
      "2 a",
      "2 udp://127.0.0.1:1",
      "2 inproc://",
      "2 ipc://relative",
      "2 tcp://127.0.0.1",
      "2 tcp://:1",
      "2 tcp://127.0.0.1:",
      "2 tcp://127.0.0.1:0",
      "2 tcp://127.0.0.1:*",
      "2 tcp://127.0.0.1:65536",
      "2 tcp://::1:4000",
      "2 inproc://a more",
      "1 inproc://again",
  };
  for (const char* line : lines) {
    const std::string error = errorOfBook("1 inproc://one\n# comment\n" + std::string(line));
    EXPECT_EQ(error.find("address book, line 3: "), 0u) << line << ": " << error;
  }
  EXPECT_NE(errorOfBook("2 ipc:///" + std::string(200, 'a')).find("too long"), std::string::npos);
}

TEST_F(Tcp, DeliversOverLoopback) {
  const std::string book = "1 tcp://127.0.0.1:" + std::to_string(freePort()) +
                           "\n2 tcp://localhost:" + std::to_string(freePort()) + "\n";
  const OpenNode one = open(1, withBook(book));
  const OpenNode two = open(2, withBook(book));
  ASSERT_EQ(sendNotes(2, {"a", "b"}, 9), MESH_OK) << mesh_node_last_error();
  const std::vector<Received> expected{{1, noteId, 9, "a", 0}, {1, noteId, 9, "b", 0}};
  EXPECT_EQ(receiveNotes(two, 2), expected);
  ASSERT_EQ(mesh_node_attach(two), MESH_OK);
  ASSERT_EQ(sendNotes(1, {"c"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(one, 1).size(), 1u);
}

TEST_F(Tcp, DeliversOverIpv6Loopback) {
  const int probe = ::socket(AF_INET6, SOCK_STREAM, 0);
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_addr = in6addr_loopback;
  const bool possible =
      probe >= 0 && bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  close(probe);
  if (!possible) {
    GTEST_SKIP() << "this machine has no [::1]";
  }
  const std::string book = "1 tcp://[::1]:" + std::to_string(freePort()) + "\n";
  const OpenNode node = open(1, withBook(book));
  ASSERT_EQ(sendNotes(1, {"a"}), MESH_OK) << mesh_node_last_error();
  EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
}

TEST_F(Tcp, ReturnsNoDestinationWithoutListener) {
  const std::string book = "2 tcp://127.0.0.1:" + std::to_string(freePort()) + "\n";
  const OpenNode node = open(1, withBook(book));
  EXPECT_EQ(sendNotes(2, {"a"}), MESH_NO_DESTINATION);
}

TEST_F(Tcp, RejectsAPortInUseAndFreesItOnClose) {
  const std::string book = "1 tcp://127.0.0.1:" + std::to_string(freePort()) + "\n";
  for (int round = 0; round < 5; ++round) {
    const OpenNode node = open(1, withBook(book));
    EXPECT_EQ(resultOfOpening(1, withBook(book)), MESH_ADDRESS_IN_USE);
  }
}

TEST_F(Tcp, RejectsNonLoopbackAddressesWithoutKeys) {
  for (const char* host :
       {"0.0.0.0", "*", "192.168.1.1", "[::]", "[2001:db8::1]", "eth0", "126.0.0.1",
        "127.0.0.1.example", "localhost.example", "[::ffff:10.0.0.1]"}) {
    const std::string book = std::string("1 tcp://") + host + ":4000\n";
    EXPECT_EQ(resultOfOpening(1, withBook(book)), MESH_BAD_CONFIGURATION) << host;
    EXPECT_NE(std::string(mesh_node_last_error()).find("loopback"), std::string::npos) << host;
  }
}

TEST_F(RuntimeDirectory, IsCreatedPrivate) {
  const std::string path = directory() + "/new";
  mesh_node_options options = defaults();
  options.runtime_directory = path.c_str();
  const OpenNode node = open(1, options);
  struct stat status;
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(RuntimeDirectory, DefaultsToXdgRuntimeDir) {
  unsetenv("ZARNIMESH_RUNTIME_DIR");
  setenv("XDG_RUNTIME_DIR", directory().c_str(), 1);
  const OpenNode node = open(1);
  struct stat status;
  EXPECT_EQ(stat((directory() + "/zarnimesh/1").c_str(), &status), 0);
}

TEST_F(RuntimeDirectory, IsRejectedWhenOpenToOthers) {
  for (const mode_t mode : {0755u, 0710u, 0701u, 0770u}) {
    ASSERT_EQ(chmod(directory().c_str(), mode), 0);
    EXPECT_EQ(resultOfOpening(1, defaults()), MESH_BAD_CONFIGURATION);
    EXPECT_NE(std::string(mesh_node_last_error()).find("open to other users"), std::string::npos);
  }
  ASSERT_EQ(chmod(directory().c_str(), 0700), 0);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_OK);
}

TEST_F(RuntimeDirectory, IsRejectedWhenOwnedByAnotherUser) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a directory away";
  }
  ASSERT_EQ(chown(directory().c_str(), 65534, 65534), 0);
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_BAD_CONFIGURATION);
  EXPECT_NE(std::string(mesh_node_last_error()).find("another user"), std::string::npos);
}

TEST_F(RuntimeDirectory, IsRejectedWithABadPath) {
  const std::string file = directory() + "/file";
  std::ofstream(file) << "x";
  const std::string link = directory() + "/link";
  ASSERT_EQ(symlink(directory().c_str(), link.c_str()), 0);
  for (const std::string& path :
       {file, link, directory() + "/absent/deeper", std::string("relative"), std::string()}) {
    mesh_node_options options = defaults();
    options.runtime_directory = path.c_str();
    EXPECT_EQ(resultOfOpening(1, options), MESH_BAD_CONFIGURATION) << path;
  }
}

}  // namespace
}  // namespace platform_test

// Replaces the system's listen(), also for the middleware and ZeroMQ.
extern "C" int listen(int file, int backlog) {
  sockaddr_un address{};
  socklen_t length = sizeof address;
  struct stat status {};
  if (getsockname(file, reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
      address.sun_family == AF_UNIX && stat(address.sun_path, &status) == 0) {
    platform_test::modesWhenListening.push_back(status.st_mode & 0777);
  }
  static const auto system = reinterpret_cast<int (*)(int, int)>(dlsym(RTLD_NEXT, "listen"));
  return system(file, backlog);
}
