// Records made of a fuzzer's input.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include "oracle/values/value.hpp"

namespace fuzz {

// Whether byte strings may be declared longer than they are. Such a record can be measured, not
// written.
enum class Lengths { True, MayLie };

struct Taken {
  oracle::Value value;
  bool lies = false;
};

Taken takeRecord(FuzzedDataProvider& input, const oracle::Description& message, Lengths lengths);

}  // namespace fuzz
