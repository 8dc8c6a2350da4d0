// Interruption by the user.
#pragma once

namespace tool {

// From now on SIGINT, SIGTERM and SIGHUP only make isInterrupted true.
void catchInterruptions();
bool isInterrupted();

}  // namespace tool
