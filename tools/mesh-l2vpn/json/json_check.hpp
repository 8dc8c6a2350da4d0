// Which JSON text is read at all.
#pragma once

#include <string_view>

namespace tool {

// Fails for text that is no JSON, and for what no record's is: a member that is there twice, of
// which the parser would keep one and nobody would know which; deep nesting, which a value's
// destructor goes down; more values than any record has.
void refuseUnsound(std::string_view text);

}  // namespace tool
