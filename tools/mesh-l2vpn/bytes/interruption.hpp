// Ends what would go on without end when the user wants it to.
#pragma once

namespace tool {

// From now on SIGINT, SIGTERM and SIGHUP only make isInterrupted true.
void catchInterruptions();
bool isInterrupted();

}  // namespace tool
