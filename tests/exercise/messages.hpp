// Every message through its exported functions alone: nothing of the library's inside is linked.
#pragma once

#include <vector>

#include "support/exported_operations.hpp"

namespace exercise {

using Operations = harness::ExportedOperations;

const std::vector<Operations>& messages();

}  // namespace exercise
