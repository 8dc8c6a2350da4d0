// The pages and headers that the program writes.
#pragma once

#include "inspect/schema/facts.hpp"

namespace catalogue {

// The functions of a message, as suffixes of its name.
inline constexpr const char* operations[] = {"__unpack",     "_free__unpacked", "__pack",
                                             "__sendsingle", "__sendbatch",     "__sendmsg",
                                             "__sendtomsg"};

void writePage();

// Writes the header with the functions of a service, which its public header includes.
void writeFunctions(const inspect::Service& service);

}  // namespace catalogue
