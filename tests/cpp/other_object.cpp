// A shared object of the same process, which hides all that it need not show.
#include "mesh_l2vpn/messages.hpp"

__attribute__((visibility("default"))) std::error_code resultOfAnotherObject(uint32_t value) {
  return mesh_l2vpn::result(value);
}
