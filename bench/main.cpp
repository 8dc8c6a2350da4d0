#include "bench/groups.hpp"
#include "bench/middleware.hpp"

int main(int count, char** arguments) {
  bench::requireSurroundings();
  bench::addTargets();
  bench::addSweep();
  bench::addGrowth();
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
