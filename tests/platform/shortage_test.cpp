// The system has no descriptors, memory, threads or random numbers for a node.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "support/free_port.hpp"
#include "support/node_fixture.hpp"
#include "support/own_process.hpp"
#include "support/raw_sender.hpp"

namespace platform_test {
namespace {

// Takes the process's descriptors, all but some.
class Taken {
 public:
  explicit Taken(size_t left) {
    for (int file = 0; file >= 0;) {
      file = open("/dev/null", O_RDONLY);
      files_.push_back(file);
    }
    for (size_t file = 0; file <= left; ++file) {
      close(files_.back());
      files_.pop_back();
    }
  }
  ~Taken() {
    for (const int file : files_) {
      close(file);
    }
  }
  Taken(const Taken&) = delete;
  Taken& operator=(const Taken&) = delete;

 private:
  std::vector<int> files_;
};

class Shortage : public NodeFixture {
 protected:
  // Limits cannot be raised again. A test that waits for ever is killed.
  template <typename Body>
  static void inAChild(Body&& body) {
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      alarm(60);
      body();
      std::fflush(nullptr);
      _exit(HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }

  static void limit(int resource, rlim_t value) {
    const rlimit limit{.rlim_cur = value, .rlim_max = value};
    ASSERT_EQ(setrlimit(resource, &limit), 0);
  }

  // A node that accepts one peer, itself.
  mesh_node_options withKeys(uint32_t address) {
    const KeyPair own = newKeyPair();
    keys_ = directory() + "/keys";
    std::ofstream(keys_) << "own " << own.publicKey << " " << own.secretKey << "\nnode " << address
                         << " " << own.publicKey << "\n";
    EXPECT_EQ(chmod(keys_.c_str(), 0600), 0);
    book_ = std::to_string(address) + " " + tcpEndpoint(freePort());
    mesh_node_options options = defaults();
    options.key_file = keys_.c_str();
    options.address_book = book_.c_str();
    return options;
  }

  static void expectDelivery(uint32_t address, const mesh_node_options& options) {
    mesh_node* node = nullptr;
    const Deadline deadline;
    while (mesh_node_open(address, &options, &node) != MESH_OK && options.address_book != nullptr &&
           !deadline.passed()) {
      // ZeroMQ frees a port a moment later.
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    const OpenNode closing(node);
    ASSERT_NE(node, nullptr) << mesh_node_last_error();
    ASSERT_EQ(mesh_node_attach(node), MESH_OK);
    EXPECT_EQ(sendNotes(address, {"a"}), MESH_OK) << mesh_node_last_error();
    EXPECT_EQ(receiveNotes(node, 1).size(), 1u);
    ASSERT_EQ(mesh_node_attach(nullptr), MESH_OK);
  }

 private:
  std::string keys_;
  std::string book_;
};

TEST_F(Shortage, OfDescriptorsIsTold) {
  inAChild([] {
    limit(RLIMIT_NOFILE, 200);
    const Taken all(0);
    std::string error;
    // Not every open counts the descriptors.
    for (int round = 0; round < 100 && error.find("are in use") == std::string::npos; ++round) {
      EXPECT_EQ(resultOfOpening(1, defaults()), MESH_SYSTEM_ERROR);
      error = mesh_node_last_error();
    }
    EXPECT_NE(error.find("200 of 200 file descriptors are in use"), std::string::npos) << error;
  });
}

// Whether our opendir() below fails.
bool directoryFails = false;

TEST_F(Shortage, OfDescriptorsInTheWholeSystemIsTold) {
  std::string error;
  // Not every open counts the descriptors.
  for (int round = 0; round < 100 && error.empty(); ++round) {
    directoryFails = true;
    const mesh_result result = resultOfOpening(1, defaults());
    directoryFails = false;
    if (result != MESH_OK) {
      EXPECT_EQ(result, MESH_SYSTEM_ERROR);
      error = mesh_node_last_error();
    }
  }
  EXPECT_EQ(error, "file descriptors: Too many open files in system");
}

TEST_F(Shortage, OfDescriptorsLeavesNothingOfANodeThatCannotOpen) {
  mesh_node_options inproc = defaults();
  inproc.transport = MESH_TRANSPORT_INPROC;
  struct Case {
    mesh_node_options options;
    size_t mostLeft;  // descriptors
  };
  // ZeroMQ ends the process when it binds over tcp without a descriptor: with two left it tries.
  for (const auto& [options, mostLeft] :
       {Case{defaults(), 12}, Case{inproc, 12}, Case{withKeys(2), 1}}) {
    inAChild([&options = options, mostLeft = mostLeft] {
      limit(RLIMIT_NOFILE, openFiles() + 600);
      // It shares the transport's context.
      const OpenNode other = open(1);
      size_t refused = 0;
      for (size_t left = 0; left <= mostLeft; ++left) {
        const Taken all(left);
        refused += resultOfOpening(2, options) != MESH_OK ? 1 : 0;
      }
      EXPECT_GT(refused, 0u);
      expectDelivery(2, options);
    });
  }
}

TEST_F(Shortage, OfDescriptorsDoesNotKeepANodeFromClosing) {
  inAChild([] {
    limit(RLIMIT_NOFILE, openFiles() + 600);
    const OpenNode other = open(1);
    for (size_t left = 0; left < 4; ++left) {
      OpenNode node = open(2);
      const Taken all(left);
      EXPECT_EQ(node.close(), MESH_OK);
    }
    expectDelivery(2, defaults());
  });
}

TEST_F(Shortage, OfStandardInputMakesDescriptorZeroOneLikeOthers) {
  for (const size_t openNodes : {0u, 1u, 2u}) {
    inAChild([&] {
      std::vector<OpenNode> nodes;
      while (nodes.size() < 2) {
        if (nodes.size() == openNodes) {
          close(STDIN_FILENO);
        }
        nodes.push_back(open(static_cast<uint32_t>(nodes.size()) + 1));
      }
      if (openNodes == 2) {
        close(STDIN_FILENO);
      }
      EXPECT_GE(mesh_node_descriptor(nodes[1], nullptr), 0);
      EXPECT_EQ(sendNotes(2, {"a"}), MESH_OK);
      EXPECT_EQ(receiveNotes(nodes[1], 1).size(), 1u);
      EXPECT_GE(fcntl(STDIN_FILENO, F_GETFD), 0) << "open again";
      nodes.clear();
      EXPECT_EQ(resultOfOpening(2, defaults()), MESH_OK) << mesh_node_last_error();
    });
  }
}

TEST_F(Shortage, OfMemoryForACallIsAResult) {
  if (keepsFreedMemory) {
    GTEST_SKIP() << "the sanitizer maps memory of its own";
  }
  inAChild([] {
    // Nothing is copied from it.
    constexpr uint32_t length = 1 << 30;
    const void* table = mmap(nullptr, length, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(table, MAP_FAILED);
    const mesh_msg_desc large{
        .data = reinterpret_cast<uintptr_t>(table), .msg_id = noteId, .length = length};
    mesh_node_options options = defaults();
    options.payload_limit = length;
    const OpenNode node = open(1, options);
    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    // All but the call has room.
    limit(RLIMIT_AS, pages * static_cast<size_t>(sysconf(_SC_PAGESIZE)) + length / 2);
    EXPECT_EQ(MESH_SendMsg(1, &large, 1), uint32_t{MESH_OUT_OF_MEMORY});
  });
}

// Whether our mprotect() and zmq_ctx_new() below fail.
bool mprotectFails = false;
bool contextFails = false;

TEST_F(Shortage, OfMemoryForANodeIsAResult) {
  mprotectFails = true;
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_OUT_OF_MEMORY);
  mprotectFails = false;
  EXPECT_NE(std::string(mesh_node_last_error()).find("record area"), std::string::npos);
  contextFails = true;
  EXPECT_EQ(resultOfOpening(1, defaults()), MESH_OUT_OF_MEMORY);
  contextFails = false;
  EXPECT_NE(std::string(mesh_node_last_error()).find("context"), std::string::npos);
}

// Whether our pthread_create() below fails.
bool threadsFail = false;

TEST_F(Shortage, OfThreadsLeavesNothingOfANodeThatCannotOpen) {
  mesh_node_options inproc = defaults();
  inproc.transport = MESH_TRANSPORT_INPROC;
  for (const mesh_node_options& options : {defaults(), inproc, withKeys(2)}) {
    inAChild([&options] {
      for (int round = 0; round < 3; ++round) {
        threadsFail = true;
        EXPECT_EQ(resultOfOpening(2, options), MESH_SYSTEM_ERROR);
        threadsFail = false;
        EXPECT_STRNE(mesh_node_last_error(), "");
        EXPECT_EQ(sendNotes(2, {"a"}), MESH_NOT_OPEN);
        expectDelivery(2, options);
      }
    });
  }
}

// Which call of our getrandom() below fails, from 1.
int failingCall = 0;

TEST_F(Shortage, OfRandomNumbersIsAResult) {
  const OpenNode other = open(2);  // ZeroMQ has taken its own
  // A node has a number as a sender and one as a receiver.
  for (const int call : {1, 2}) {
    failingCall = call;
    EXPECT_EQ(resultOfOpening(1, defaults()), MESH_SYSTEM_ERROR);
    failingCall = 0;
    EXPECT_NE(std::string(mesh_node_last_error()).find("random number"), std::string::npos);
  }
}

}  // namespace
}  // namespace platform_test

// These replace functions of the system and of ZeroMQ, also for the middleware.

extern "C" void* zmq_ctx_new() {
  if (platform_test::contextFails) {
    errno = ENOMEM;
    return nullptr;
  }
  static const auto system = reinterpret_cast<void* (*)()>(dlsym(RTLD_NEXT, "zmq_ctx_new"));
  return system();
}

extern "C" DIR* opendir(const char* path) {
  if (platform_test::directoryFails) {
    errno = ENFILE;
    return nullptr;
  }
  static const auto system = reinterpret_cast<DIR* (*)(const char*)>(dlsym(RTLD_NEXT, "opendir"));
  return system(path);
}

extern "C" int mprotect(void* address, size_t size, int access) {
  if (platform_test::mprotectFails) {
    errno = ENOMEM;
    return -1;
  }
  static const auto system =
      reinterpret_cast<int (*)(void*, size_t, int)>(dlsym(RTLD_NEXT, "mprotect"));
  return system(address, size, access);
}

// The sanitizers' own function, in their builds.
extern "C" [[gnu::weak]] int __interceptor_pthread_create(pthread_t*, const pthread_attr_t*,
                                                          void* (*)(void*), void*);

// ZeroMQ gets its threads: it ends the process without.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*run)(void*), void* argument) {
  Dl_info caller{};
  if (platform_test::threadsFail && dladdr(__builtin_return_address(0), &caller) != 0 &&
      std::string(caller.dli_fname).find("zmq") == std::string::npos) {
    return EAGAIN;
  }
  static const auto system = reinterpret_cast<decltype(&pthread_create)>(
      __interceptor_pthread_create != nullptr
          ? reinterpret_cast<void*>(&__interceptor_pthread_create)
          : dlsym(RTLD_NEXT, "pthread_create"));
  return system(thread, attributes, run, argument);
}

extern "C" ssize_t getrandom(void* bytes, size_t size, unsigned flags) {
  if (platform_test::failingCall > 0 && --platform_test::failingCall == 0) {
    errno = ENOSYS;
    return -1;
  }
  static const auto system =
      reinterpret_cast<ssize_t (*)(void*, size_t, unsigned)>(dlsym(RTLD_NEXT, "getrandom"));
  return system(bytes, size, flags);
}
