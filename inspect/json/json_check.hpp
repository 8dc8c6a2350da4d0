// Checks JSON text before it is parsed.
#pragma once

#include <string_view>

namespace inspect {

// Fails for invalid JSON, and for JSON that no record has: duplicate members, of which the parser
// silently keeps one; deep nesting, through which destructors recurse; too many values. Returns the
// number of values.
size_t checkJson(std::string_view text);

}  // namespace inspect
