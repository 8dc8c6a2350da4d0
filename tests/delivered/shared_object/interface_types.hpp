// A description of the interfaces that the library declares for itself and the platform's headers
// declare for everybody else. Each of the two is compiled in a file of its own.
#pragma once

#include <string>
#include <vector>

namespace interfaces {

template <typename Type>
std::string nameOf() {
  return __PRETTY_FUNCTION__;
}

std::vector<std::string> asTheLibraryHasThem();
std::vector<std::string> asThePlatformHasThem();

}  // namespace interfaces
