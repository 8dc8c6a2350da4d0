// Endpoints of the addresses that are not found by default.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "zarnimesh/configuration/endpoint.hpp"

namespace zarnimesh {

class AddressBook {
 public:
  // Takes over the entries of `text`: lines of an address, blanks and an endpoint, with comments
  // behind #. `name` tells in errors where the text is from. No entry is kept on failure.
  [[nodiscard]] mesh_result parse(std::string_view text, const std::string& name);

  // As parse, for the contents of a file.
  [[nodiscard]] mesh_result readFile(const std::string& path);

  // Null when the book does not name the address.
  const Endpoint* find(uint32_t address) const;

 private:
  std::unordered_map<uint32_t, Endpoint> entries_;
};

}  // namespace zarnimesh
