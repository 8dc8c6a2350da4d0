// The command line: the program's commands and their options.
#pragma once

#include "session.hpp"

namespace tool {

// Runs the command that the words name. Throws its failures.
Exit runCommandLine(int count, char** words);

}  // namespace tool
