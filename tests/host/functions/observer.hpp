// What the host's functions of these tests call back into the test executable.
#pragma once

#include <cstdint>

extern "C" {

// Writes down one call.
void hostNote(const char* line);

// What DDM_OsalMemUseFlagGet is to answer.
uint32_t hostUseFlag();

}  // extern "C"
