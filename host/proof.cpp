// What the host reads of a module: the binding record's layout. Nothing of it is compiled into the
// library.
#include <cstddef>
#include <type_traits>

#include "host/binding.hpp"

namespace mesh::host {

static_assert(sizeof(void*) == 8, "records, descriptors and this layout are those of 64-bit hosts");
static_assert(std::is_standard_layout_v<serial_env>);
static_assert(offsetof(serial_env, frameworkName) == 0);
static_assert(offsetof(serial_env, moduleName) == 8);
static_assert(offsetof(serial_env, memModuleId) == 16);
static_assert(offsetof(serial_env, hostLock) == 24);
static_assert(offsetof(serial_env, logWrite) == 24 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, memAlloc) == 32 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, memFree) == 40 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, hostBound) == 48 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackLock) == 56 + sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackBound) == 56 + 2 * sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackAlloc) == 64 + 2 * sizeof(pthread_mutex_t));
static_assert(offsetof(serial_env, unpackFree) == 72 + 2 * sizeof(pthread_mutex_t));
static_assert(std::atomic<uint32_t>::is_always_lock_free);

}  // namespace mesh::host
