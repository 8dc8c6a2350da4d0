// transport_bench OUTPUT SECONDS REPETITIONS [TEXT]
//
// Measures the workstation's middleware beside raw ZeroMQ, each case for SECONDS. Writes every
// repetition to OUTPUT. TEXT: only cases whose name has it. A name:
// kind/transport/records of a call/peers/way.
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zmq.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "bench/transport/trial.hpp"

namespace transport_bench {

void fail(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::fputs("transport_bench: ", stderr);
  std::vfprintf(stderr, format, arguments);
  std::fputs("\n", stderr);
  va_end(arguments);
  _exit(1);
}

namespace {

constexpr const char* transportNames[] = {"ipc", "tcp", "curve", "inproc"};
constexpr const char* wayNames[] = {"raw", "tables", "records"};
constexpr uint32_t callSizes[] = {1, 16, mostRecords};
constexpr uint32_t crowds[] = {10, 100, 1000};

uint16_t freePort() {
  const int file = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (file < 0 || bind(file, generic, size) != 0 || getsockname(file, generic, &size) != 0) {
    fail("no free port: %s", std::strerror(errno));
  }
  close(file);
  return ntohs(address.sin_port);
}

// A directory of this process, with the keys of two nodes.
class Workplace {
 public:
  Workplace() {
    char name[] = "/tmp/transport-bench-XXXXXX";
    if (mkdtemp(name) == nullptr) {
      fail("mkdtemp: %s", std::strerror(errno));
    }
    directory = name;
    for (Keys& each : keys) {
      if (zmq_curve_keypair(each.publicKey, each.secretKey) != 0) {
        fail("no CURVE keys: %s", zmq_strerror(zmq_errno()));
      }
    }
    writeKeys(firstSender, keys[0], firstReceiver, keys[1]);
    writeKeys(firstReceiver, keys[1], firstSender, keys[0]);
  }
  ~Workplace() { std::filesystem::remove_all(directory); }
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  std::string directory;
  Keys keys[2];

 private:
  void writeKeys(uint32_t own, const Keys& ownKeys, uint32_t other, const Keys& otherKeys) const {
    const std::string path = directory + "/" + std::to_string(own) + ".keys";
    std::ofstream(path) << "own " << ownKeys.publicKey << " " << ownKeys.secretKey << "\nnode "
                        << other << " " << otherKeys.publicKey << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  }
};

// The order in which the cases are measured: ours beside raw.
std::vector<Setup> allCases() {
  std::vector<Setup> cases;
  for (const uint32_t records : callSizes) {
    for (const Transport transport :
         {Transport::Ipc, Transport::Tcp, Transport::Curve, Transport::Inproc}) {
      for (const Kind kind : {Kind::Rate, Kind::Latency}) {
        for (const Way way : {Way::Raw, Way::Tables, Way::Records}) {
          cases.push_back({kind, transport, way, records, 1, 1});
        }
      }
    }
  }
  const auto addBoth = [&](Kind kind, Transport transport, uint32_t senders, uint32_t receivers) {
    cases.push_back({kind, transport, Way::Raw, 1, senders, receivers});
    cases.push_back({kind, transport, Way::Tables, 1, senders, receivers});
  };
  for (const uint32_t peers : crowds) {
    addBoth(Kind::Rate, Transport::Ipc, peers, 1);
    addBoth(Kind::Rate, Transport::Ipc, 1, peers);
  }
  addBoth(Kind::Crowd, Transport::Inproc, crowds[2], crowds[2]);
  return cases;
}

std::string nameOf(const Setup& setup) {
  const char* const kinds[] = {"rate", "latency", "crowd"};
  const char* kind = kinds[static_cast<size_t>(setup.kind)];
  if (setup.kind == Kind::Rate && setup.senders != setup.receivers) {
    kind = setup.senders > 1 ? "fan_in" : "fan_out";
  }
  return std::string(kind) + "/" + transportNames[static_cast<size_t>(setup.transport)] + "/" +
         std::to_string(setup.records) + "/" +
         std::to_string(std::max(setup.senders, setup.receivers)) + "/" +
         wayNames[static_cast<size_t>(setup.way)];
}

void writeSurroundings(std::FILE* output, int repetitions) {
  int major = 0;
  int minor = 0;
  int patch = 0;
  zmq_version(&major, &minor, &patch);
  const auto today = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  char date[16];
  std::strftime(date, sizeof date, "%F", std::gmtime(&today));
  double load = 0;
  getloadavg(&load, 1);
  std::fprintf(output,
               "{\"date\": \"%s\", \"load\": %.1f, \"compiler\": \"%s\", \"zeromq\": \"%d.%d.%d\", "
               "\"processors\": %ld, \"repetitions\": %d, \"results\": [",
               date, load, BENCH_COMPILER, major, minor, patch, sysconf(_SC_NPROCESSORS_ONLN),
               repetitions);
}

void write(std::FILE* output, const Setup& setup, const Result& result) {
  std::fprintf(output, "{\"case\": \"%s\"", setup.name.c_str());
  if (setup.kind == Kind::Rate) {
    std::fprintf(output, ", \"records_per_second\": %.0f", result.recordsPerSecond);
  } else if (setup.kind == Kind::Latency) {
    std::fprintf(output, ", \"median_us\": %.2f, \"p99_us\": %.2f", result.medianUs,
                 result.percentile99Us);
  }
  if (setup.senders + setup.receivers > 2) {
    std::fprintf(output, ", \"peer_bytes\": %.0f, \"peer_files\": %.2f", result.peerBytes,
                 result.peerFiles);
  }
  std::fputs("}", output);
}

}  // namespace
}  // namespace transport_bench

int main(int count, char** arguments) {
  using namespace transport_bench;
  const double seconds = count < 4 ? 0 : std::atof(arguments[2]);
  const int repetitions = count < 4 ? 0 : std::atoi(arguments[3]);
  if (seconds <= 0 || repetitions <= 0) {
    fail("usage: transport_bench OUTPUT SECONDS REPETITIONS [TEXT]");
  }
  std::FILE* const output = std::fopen(arguments[1], "we");
  if (output == nullptr) {
    fail("%s: %s", arguments[1], std::strerror(errno));
  }
  const char* const filter = count > 4 ? arguments[4] : "";
  // A thousand peers need some thousand descriptors.
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);

  writeSurroundings(output, repetitions);
  const Workplace workplace;
  const std::vector<uint8_t> tables = packTablesApart();
  const char* separator = "\n";
  for (int repetition = 0; repetition < repetitions; ++repetition) {
    for (Setup setup : allCases()) {
      setup.name = nameOf(setup);
      if (setup.name.find(filter) == std::string::npos) {
        continue;
      }
      setup.seconds = seconds;
      setup.directory = workplace.directory;
      setup.ports[0] = freePort();
      setup.ports[1] = freePort();
      setup.keys = workplace.keys;
      setup.tables = &tables;
      std::fputs(std::exchange(separator, ",\n"), output);
      write(output, setup, measure(setup));
    }
  }
  std::fputs("]}\n", output);
  return std::fclose(output) == 0 ? 0 : 1;
}
