// The groups of cases. A case's name is group/message/operation, or group/message/operation/number
// if one number varies.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <utility>

namespace bench {

void addTargets();
void addSweep();
void addGrowth();
void addCpp();

template <typename Case, typename... Arguments>
benchmark::internal::Benchmark* add(const std::string& name, Case run, Arguments... arguments) {
  return benchmark::RegisterBenchmark(name.c_str(),
                                      [=](benchmark::State& state) { run(state, arguments...); });
}

}  // namespace bench
