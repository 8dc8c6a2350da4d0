// The functions of the test executable that these host's functions call.
#pragma once

#include <cstdint>

extern "C" {

// Records one call.
void hostNote(const char* line);

// The answer of DDM_OsalMemUseFlagGet.
uint32_t hostUseFlag();

}  // extern "C"
