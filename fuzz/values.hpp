// Records out of the bytes that the fuzzer tries.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include "oracle/values/value.hpp"

namespace fuzz {

// Whether byte strings may be declared longer than they are. Such a record can be measured, but not
// written.
enum class Lengths { True, MayLie };

struct Taken {
  oracle::Value value;
  bool lies = false;
};

Taken takeRecord(FuzzedDataProvider& input, const oracle::Description& message, Lengths lengths);

}  // namespace fuzz
