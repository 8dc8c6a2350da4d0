// Every text that this library logs, through the host's log writer. `function` is the name text of
// the operation that reports.
#pragma once

#include <cstdint>

namespace mesh::host {

struct serial_env;

// __unpack was given a null buffer or record, or a length that is below 4 as a signed number.
void reportUnpackParameters(serial_env& env, const char* function, const void* data,
                            uint32_t length, const void* record);

// __pack was given a null buffer.
void reportPackParameters(serial_env& env, const char* function, const void* buffer, uint32_t room,
                          const void* record);

// `table` is the table's position, in the vtable's report too.
void reportTableOffset(serial_env& env, const char* function, uint32_t table, uint32_t length);
void reportVtableOffset(serial_env& env, const char* function, uint32_t table, uint32_t largest);
void reportVtableLength(serial_env& env, const char* function, uint32_t vtableLength,
                        uint32_t left);

// Decoding was refused `size` bytes: in a message's own root decoder, and in a table reader.
void reportRootAllocation(serial_env& env, const char* function, uint32_t size);
void reportTableAllocation(serial_env& env, const char* function, uint32_t size);

}  // namespace mesh::host
