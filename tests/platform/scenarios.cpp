// Random scenarios: nodes of several processes send to each other while some are closed, killed,
// stopped and restarted. After each scenario every call that was sent has been delivered or
// counted.
//
//   platform_scenarios [--seed N] [--scenarios N] [--seconds S] [--over ipc|tcp|inproc] [--verbose]
//
// Over inproc the nodes are threads of this process, and are only closed and restarted.
//
// Scenario K of the seed N is the first scenario of the seed N + K. Prints the seed of one that
// fails, and exits with 1.
//
// What holds exactly, when no process is killed:
//
//   sent = delivered + undelivered at the senders + discarded at the receivers
//
// And when the nodes end in the order of their starts: what the last of them and its predecessor
// say to miss was sent there, and was neither delivered nor discarded. A receiver that ends before
// its senders may miss more, until they have corrected it.
//
// A killed process cannot tell what it had counted. The check then admits as missing what a killed
// sender had sent in its last moments, what it had sent to nodes that ended too, and what a killed
// receiver had confirmed to senders that had closed. It admits as counted twice what a killed
// receiver had delivered in its last moments.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/free_port.hpp"
#include "support/temporary_directory.hpp"
#include "zarnimesh/mesh.h"
#include "zarnimesh/node.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr uint32_t mostNodes = 50;
constexpr uint32_t mostLives = 128;
constexpr uint32_t messageId = 0x5CE0;

enum class Over { Ipc, Tcp, Inproc };

enum class Command : int { Send, Pause, Close };
enum class State : int { Starting, Open, Paused, Closed, Failed };

// One node, from its opening to its end. Shared by the supervisor and all nodes.
struct Life {
  std::atomic<Command> command = Command::Send;
  std::atomic<State> state = State::Starting;
  uint32_t address = 0;
  uint32_t sendQueue = 0;
  uint32_t receiveQueue = 0;
  uint32_t handlerMicroseconds = 0;
  uint32_t largest = 0;  // bytes of a call
  uint64_t seed = 0;

  std::atomic<uint64_t> sent[mostNodes] = {};       // to each address
  std::atomic<uint64_t> delivered[mostLives] = {};  // from each life
  std::atomic<uint64_t> undelivered = 0;
  std::atomic<uint64_t> discarded = 0;
  std::atomic<uint64_t> missed = 0;
  std::atomic<uint64_t> malformed = 0;
  std::atomic<uint64_t> duplicates = 0;

  // The supervisor's.
  pid_t process = 0;
  bool stopped = false;
  bool killed = false;
  bool ended = false;
};

struct Shared {
  Life lives[mostLives];
};

uint32_t unpack(const uint8_t* data, uint32_t length, void* record) {
  std::memcpy(record, data, std::min<size_t>(length, sizeof(uint32_t)));
  return sizeof(uint32_t);
}

struct Receiving {
  Life& life;
};

void deliver(const mesh_received* received, void* user) {
  Life& life = static_cast<Receiving*>(user)->life;
  uint32_t sender = 0;
  std::memcpy(&sender, received->record, sizeof sender);
  life.delivered[sender % mostLives].fetch_add(1);
  if (life.handlerMicroseconds > 0) {
    std::this_thread::sleep_for(std::chrono::microseconds(life.handlerMicroseconds));
  }
}

void sendAll(Life& life, uint32_t number, uint32_t nodes, mesh_node* node) {
  std::mt19937_64 random(life.seed);
  std::vector<uint8_t> table(std::max<size_t>(life.largest, sizeof number));
  std::memcpy(table.data(), &number, sizeof number);
  for (;;) {
    const Command command = life.command.load();
    if (command == Command::Close) {
      return;
    }
    if (command == Command::Pause) {
      life.state.store(State::Paused);
      std::this_thread::sleep_for(milliseconds(1));
      continue;
    }
    life.state.store(State::Open);
    const auto to = static_cast<uint32_t>(random() % nodes);
    const auto length =
        static_cast<uint32_t>(sizeof number + random() % (table.size() - sizeof number + 1));
    const mesh_msg_desc call{
        .data = reinterpret_cast<uintptr_t>(table.data()), .msg_id = messageId, .length = length};
    const int32_t timeout = random() % 4 == 0 ? 0 : 20;
    if (mesh_node_send(node, to + 1, &call, 1, 0, timeout) == MESH_OK) {
      life.sent[to].fetch_add(1);
    }
    if (random() % 64 == 0) {
      std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
    }
  }
}

// Runs in a process or thread of its own. Returns false if the node did not open.
[[nodiscard]] bool live(Life& life, uint32_t number, uint32_t nodes, const char* book, Over over) {
  MESH_RegIDLFuncHook(messageId, unpack, [](void*) {});
  mesh_node_options options;
  mesh_node_options_default(&options);
  options.address_book = book;
  options.transport = over == Over::Inproc ? MESH_TRANSPORT_INPROC : MESH_TRANSPORT_IPC;
  options.send_queue_calls = life.sendQueue;
  options.receive_queue_calls = life.receiveQueue;
  options.linger_ms = 20'000;
  mesh_node* node = nullptr;
  // A predecessor may still be ending.
  const auto end = steady_clock::now() + std::chrono::seconds(10);
  mesh_result result = MESH_OK;
  while ((result = mesh_node_open(life.address, &options, &node)) != MESH_OK &&
         steady_clock::now() < end) {
    if (life.command.load() == Command::Close) {
      // A successor may have taken the address.
      life.state.store(State::Closed);
      return true;
    }
    std::this_thread::sleep_for(milliseconds(2));
  }
  if (result != MESH_OK) {
    std::fprintf(stderr, "node %u: %s\n", life.address, mesh_node_last_error());
    life.state.store(State::Failed);
    return false;
  }
  life.state.store(State::Open);
  std::thread sending([&] { sendAll(life, number, nodes, node); });
  Receiving receiving{life};
  while (life.command.load() != Command::Close) {
    static_cast<void>(mesh_node_receive(node, 5, deliver, &receiving));
  }
  sending.join();
  mesh_node_statistics last;
  static_cast<void>(mesh_node_close_counted(node, &last));
  life.undelivered.store(last.undelivered_calls);
  life.discarded.store(last.discarded_calls);
  life.missed.store(last.missed_before_first + last.lost_calls);
  life.malformed.store(last.malformed);
  life.duplicates.store(last.duplicate_calls);
  life.state.store(State::Closed);
  return true;
}

class Scenario {
 public:
  Scenario(Shared& shared, uint64_t seed, Over over)
      : over_(over), lives_(shared.lives), random_(seed) {
    nodes_ = 2 + below(below(4) == 0 ? mostNodes - 1 : 7);
    setenv("ZARNIMESH_RUNTIME_DIR", directory_.path().c_str(), 1);
    std::set<uint16_t> ports;
    while (over_ == Over::Tcp && ports.size() < nodes_) {
      ports.insert(platform_test::freePort());
    }
    uint32_t node = 0;
    for (const uint16_t port : ports) {
      book_ += std::to_string(++node) + " " + platform_test::tcpEndpoint(port) + "\n";
    }
  }

  // The text of the first fault, or an empty one.
  std::string run() {
    for (uint32_t address = 1; address <= nodes_; ++address) {
      start(address);
    }
    const uint32_t events = below(6);
    for (uint32_t event = 0; event < events && count_ < mostLives - nodes_; ++event) {
      rest(20);
      Life& life = lives_[below(count_)];
      if (life.ended || life.command.load() == Command::Close) {
        continue;
      }
      switch (over_ == Over::Inproc ? 0 : below(4)) {
        case 0:
          end(life, false);
          rest(30);
          start(life.address);
          break;
        case 1:
        case 2:
          end(life, true);
          rest(30);
          if (below(4) > 0) {
            start(life.address);
          }
          break;
        default:
          toggle(life);
      }
    }
    rest(20);
    if (killed_ > 0) {
      // The others notice that the connections ended.
      std::this_thread::sleep_for(lookBack());
    }
    oneByOne_ = below(2) == 0;
    for (Life* life : running()) {
      if (life->stopped) {
        toggle(*life);
      }
    }
    for (Life* life : running()) {
      life->command.store(Command::Close);
      if (oneByOne_) {
        await(*life);
      }
    }
    for (Life* life : running()) {
      await(*life);
    }
    return fault_.empty() ? check() : fault_;
  }

  std::string description() const {
    char text[200];
    std::snprintf(text, sizeof text,
                  "%u nodes, %u lives, %u killed: %llu sent, %llu delivered, %llu undelivered, "
                  "%llu discarded",
                  nodes_, count_, killed_, ull(sum_.sent), ull(sum_.delivered),
                  ull(sum_.undelivered), ull(sum_.discarded));
    return text;
  }
  uint64_t sent() const { return sum_.sent; }
  uint64_t counted() const { return sum_.undelivered + sum_.discarded; }

 private:
  // Many processes on few processors take long to pass on what they were given.
  milliseconds lookBack() const { return milliseconds(60 + 10 * nodes_); }
  static unsigned long long ull(uint64_t value) { return value; }
  uint32_t below(uint32_t bound) { return static_cast<uint32_t>(random_() % bound); }
  void rest(uint32_t mostMs) {
    std::this_thread::sleep_for(std::chrono::microseconds(below(1000 * mostMs)));
  }

  void start(uint32_t address) {
    const uint32_t number = count_++;
    Life& life = *new (&lives_[number]) Life;
    life.address = address;
    life.sendQueue = 1 + below(below(2) == 0 ? 4 : 500);
    life.receiveQueue = 1 + below(below(2) == 0 ? 4 : 500);
    life.handlerMicroseconds = below(4) == 0 ? below(3000) : 0;
    life.largest = below(4) == 0 ? 200'000 : 200;
    life.seed = random_();
    if (over_ == Over::Inproc) {
      threads_[number] = std::thread([this, &life, number] {
        if (!live(life, number, nodes_, book_.c_str(), over_)) {
          std::abort();
        }
      });
      return;
    }
    const pid_t process = fork();
    if (process == 0) {
      _exit(live(life, number, nodes_, book_.c_str(), over_) ? 0 : 1);
    }
    if (process < 0) {
      throw std::runtime_error("no process");
    }
    life.process = process;
  }

  std::vector<Life*> running() {
    std::vector<Life*> running;
    for (uint32_t number = 0; number < count_; ++number) {
      if (!lives_[number].ended) {
        running.push_back(&lives_[number]);
      }
    }
    return running;
  }

  void toggle(Life& life) {
    life.stopped = !life.stopped;
    ::kill(life.process, life.stopped ? SIGSTOP : SIGCONT);
  }

  void end(Life& life, bool byKill) {
    interrupted_[life.address - 1] = true;
    // A node that closes waits for those that are stopped.
    for (Life* each : running()) {
      if (each->stopped) {
        toggle(*each);
      }
    }
    if (byKill) {
      kill(life);
    } else {
      life.command.store(Command::Close);
      if (below(2) == 0) {
        await(life);
      }
    }
  }

  // A quiet kill pauses the node's sender before: then nothing may be missing.
  void kill(Life& life) {
    ++killed_;
    if (below(2) == 0) {
      life.command.store(Command::Pause);
    }
    const uint32_t number = numberOf(life);
    std::vector<uint64_t> sentBefore;
    for (uint32_t to = 0; to < nodes_; ++to) {
      sentBefore.push_back(life.sent[to].load());
    }
    const uint64_t deliveredBefore = deliveredBy(life);
    std::this_thread::sleep_for(lookBack());
    ::kill(life.process, SIGKILL);
    int status = 0;
    waitpid(life.process, &status, 0);
    life.killed = true;
    life.ended = true;
    // One call may be delivered or sent, and not be noted.
    mayCountTwice_ += deliveredBy(life) - deliveredBefore + 2;
    for (uint32_t to = 0; to < nodes_; ++to) {
      killedSends_.push_back({number, to, life.sent[to].load() - sentBefore[to]});
    }
    // What senders that have closed were told to have arrived, and killed ones had sent.
    for (uint32_t sender = 0; sender < count_; ++sender) {
      const State state = lives_[sender].state.load();
      if (lives_[sender].killed || state == State::Closed ||
          lives_[sender].command.load() == Command::Close) {
        mayMiss_ += undelivered(sender, life.address - 1);
      }
    }
  }

  void await(Life& life) {
    life.ended = true;
    if (over_ == Over::Inproc) {
      threads_[numberOf(life)].join();
      return;
    }
    int status = 0;
    const auto end = steady_clock::now() + std::chrono::seconds(40);
    while (waitpid(life.process, &status, WNOHANG) == 0) {
      if (steady_clock::now() > end) {
        fault_ = "node " + std::to_string(life.address) + " does not close";
        ::kill(life.process, SIGABRT);
        waitpid(life.process, &status, 0);
        break;
      }
      std::this_thread::sleep_for(milliseconds(1));
    }
    if (status != 0 && fault_.empty()) {
      fault_ =
          "node " + std::to_string(life.address) + " ended with status " + std::to_string(status);
    }
  }

  uint32_t numberOf(const Life& life) const { return static_cast<uint32_t>(&life - lives_); }

  static uint64_t deliveredBy(const Life& life) {
    uint64_t sum = 0;
    for (const auto& from : life.delivered) {
      sum += from.load();
    }
    return sum;
  }

  // Calls of the life to the address that no node there has delivered.
  uint64_t undelivered(uint32_t sender, uint32_t to) const {
    uint64_t delivered = 0;
    for (uint32_t number = 0; number < count_; ++number) {
      if (lives_[number].address == to + 1) {
        delivered += lives_[number].delivered[sender].load();
      }
    }
    const uint64_t sent = lives_[sender].sent[to].load();
    return sent > delivered ? sent - delivered : 0;
  }

  std::string check() {
    for (uint32_t number = 0; number < count_; ++number) {
      const Life& life = lives_[number];
      for (const auto& to : life.sent) {
        sum_.sent += to.load();
      }
      sum_.delivered += deliveredBy(life);
      sum_.undelivered += life.undelivered.load();
      sum_.discarded += life.discarded.load();
      if (life.malformed.load() + life.duplicates.load() > 0) {
        return std::to_string(life.malformed.load()) + " malformed, " +
               std::to_string(life.duplicates.load()) + " repeated calls at node " +
               std::to_string(life.address);
      }
    }
    for (const KilledSend& each : killedSends_) {
      mayMiss_ += interrupted_[each.to] ? undelivered(each.sender, each.to) : each.recent;
    }
    const uint64_t found = sum_.delivered + sum_.undelivered + sum_.discarded;
    if (found + mayMiss_ < sum_.sent) {
      return std::to_string(sum_.sent - found) + " calls are neither delivered nor counted, and " +
             std::to_string(mayMiss_) + " may be";
    }
    if (found > sum_.sent + mayCountTwice_) {
      return std::to_string(found - sum_.sent) + " calls are counted twice, and " +
             std::to_string(mayCountTwice_) + " may be";
    }
    return killed_ == 0 && oneByOne_ ? checkMissed(lives_[count_ - 1].address) : "";
  }

  std::string checkMissed(uint32_t address) const {
    uint64_t sent = 0;
    uint64_t found = 0;
    uint32_t lives = 0;
    for (uint32_t number = 0; number < count_; ++number) {
      const Life& life = lives_[number];
      sent += life.sent[address - 1].load();
      if (life.address == address) {
        ++lives;
        found += deliveredBy(life) + life.discarded.load() + life.missed.load();
      }
    }
    if (lives > 2 || found <= sent) {
      return {};
    }
    return std::to_string(found - sent) + " calls too many are missed at node " +
           std::to_string(address);
  }

  struct KilledSend {
    uint32_t sender;
    uint32_t to;
    uint64_t recent;  // sent in the last moments
  };
  struct Sum {
    uint64_t sent = 0;
    uint64_t delivered = 0;
    uint64_t undelivered = 0;
    uint64_t discarded = 0;
  };

  const Over over_;
  Life* const lives_;
  std::thread threads_[mostLives];
  std::mt19937_64 random_;
  platform_test::TemporaryDirectory directory_;
  std::string book_;
  uint32_t nodes_ = 0;
  uint32_t count_ = 0;
  uint32_t killed_ = 0;
  bool oneByOne_ = false;             // nodes close in the order of their starts
  bool interrupted_[mostNodes] = {};  // a node of the address ended before the others
  std::vector<KilledSend> killedSends_;
  uint64_t mayMiss_ = 0;
  uint64_t mayCountTwice_ = 0;
  Sum sum_;
  std::string fault_;
};

}  // namespace

int main(int argc, char** argv) {
  uint64_t seed = 1;
  uint64_t scenarios = 1000;
  uint64_t seconds = 0;
  Over over = Over::Ipc;
  bool verbose = false;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    const char* value = i + 1 < argc ? argv[i + 1] : "";
    if (option == "--seed") {
      seed = std::strtoull(value, nullptr, 0);
    } else if (option == "--scenarios") {
      scenarios = std::strtoull(value, nullptr, 0);
    } else if (option == "--seconds") {
      seconds = std::strtoull(value, nullptr, 0);
    } else if (option == "--over") {
      const std::string name = value;
      over = name == "tcp" ? Over::Tcp : name == "inproc" ? Over::Inproc : Over::Ipc;
      if (over == Over::Ipc && name != "ipc") {
        std::fprintf(stderr, "--over takes ipc, tcp or inproc\n");
        return 2;
      }
    } else if (option == "--verbose") {
      verbose = true;
      continue;
    } else {
      std::fprintf(stderr, "unknown option %s\n", argv[i]);
      return 2;
    }
    ++i;
  }
  void* const memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    std::perror("shared memory");
    return 2;
  }
  Shared& shared = *new (memory) Shared;
  const auto end = steady_clock::now() + std::chrono::seconds(seconds);
  uint64_t done = 0;
  uint64_t sent = 0;
  uint64_t counted = 0;
  for (; done < scenarios && (seconds == 0 || steady_clock::now() < end); ++done) {
    Scenario scenario(shared, seed + done, over);
    const std::string fault = scenario.run();
    if (verbose || !fault.empty()) {
      std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed + done),
                  scenario.description().c_str());
    }
    if (!fault.empty()) {
      std::printf("  %s\n", fault.c_str());
      return 1;
    }
    sent += scenario.sent();
    counted += scenario.counted();
  }
  std::printf(
      "%llu scenarios from seed %llu: %llu calls sent, %llu of them counted as not delivered\n",
      static_cast<unsigned long long>(done), static_cast<unsigned long long>(seed),
      static_cast<unsigned long long>(sent), static_cast<unsigned long long>(counted));
  return 0;
}
