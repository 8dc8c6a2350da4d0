#include <fstream>
#include <string>

#include "bench/groups.hpp"
#include "bench/middleware.hpp"

namespace {

// The processor's name from the kernel.
std::string processor() {
  std::ifstream information("/proc/cpuinfo");
  for (std::string line; std::getline(information, line);) {
    const size_t colon = line.find(": ");
    if (line.starts_with("model name") && colon != std::string::npos) {
      return line.substr(colon + 2);
    }
  }
  return "unknown";
}

}  // namespace

int main(int count, char** arguments) {
  bench::requireSurroundings();
  bench::addTargets();
  bench::addSweep();
  bench::addGrowth();
  bench::addCpp();
  benchmark::AddCustomContext("processor", processor());
  benchmark::AddCustomContext("compiler", BENCH_COMPILER);
  benchmark::AddCustomContext("flags", BENCH_LIBRARY_FLAGS);
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
