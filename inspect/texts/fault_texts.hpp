// The faults of a message, for commands that only list them.
#pragma once

#include "inspect/reader/reading.hpp"

namespace inspect {

// Unless `isWhole`, many faults are cut down to the first ones and a count.
std::vector<std::string> faultTexts(const Verdict& verdict, bool isWhole);

}  // namespace inspect
