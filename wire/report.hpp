// Every text that this library logs.
#pragma once

#include "host/serial_env.hpp"

namespace mesh::wire {

// __unpack was given a null buffer or record, or a length that is below 4 as a signed number.
void reportUnpackParameters(host::serial_env& env, const char* function, const void* data,
                            uint32_t length, const void* record);

// __pack was given a null buffer.
void reportPackParameters(host::serial_env& env, const char* function, const void* buffer,
                          uint32_t room, const void* record);

// `table` is the table's position, in the vtable's report too.
void reportTableOffset(host::serial_env& env, const char* function, uint32_t table,
                       uint32_t length);
void reportVtableOffset(host::serial_env& env, const char* function, uint32_t table,
                        uint32_t largest);
void reportVtableLength(host::serial_env& env, const char* function, uint32_t vtableLength,
                        uint32_t left);

// Decoding was refused `size` bytes: in a message's own root decoder, and in a table reader.
void reportRootAllocation(host::serial_env& env, const char* function, uint32_t size);
void reportTableAllocation(host::serial_env& env, const char* function, uint32_t size);

}  // namespace mesh::wire
