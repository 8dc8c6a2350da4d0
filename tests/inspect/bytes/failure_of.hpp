// The text of a failure.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "inspect/bytes/failure.hpp"

namespace inspect {

// The text of the failure that call() throws; empty if it throws none.
template <typename Call>
std::string failureOf(Call call, Cause cause = Cause::BadInput) {
  try {
    call();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.cause(), cause);
    return failure.what();
  }
  return "";
}

}  // namespace inspect
