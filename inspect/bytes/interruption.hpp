// Interruption by the user.
#pragma once

namespace inspect {

// From now on SIGINT, SIGTERM and SIGHUP only make isInterrupted true.
void catchInterruptions();
bool isInterrupted();

}  // namespace inspect
