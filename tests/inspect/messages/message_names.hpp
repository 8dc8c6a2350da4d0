// A test for each message: INSTANTIATE_TEST_SUITE_P(Of, Suite, testing::ValuesIn(messageNames()),
// ...)
#pragma once

#include <vector>

#include "inspect/messages/messages.hpp"

namespace inspect {

inline std::vector<const char*> messageNames() {
  std::vector<const char*> names;
  for (const KnownMessage& message : messages()) {
    names.push_back(message.name.data());
  }
  return names;
}

}  // namespace inspect
