// Endpoints of addresses that do not use the default.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "zarnimesh/configuration/endpoint.hpp"

namespace zarnimesh {

class AddressBook {
 public:
  // Reads the entries of `text`: each line has an address, blanks and an endpoint. A # starts a
  // comment. Errors name the source `name`. On failure the book stays as it was.
  [[nodiscard]] mesh_result parse(std::string_view text, const std::string& name);

  // As parse, for a file.
  [[nodiscard]] mesh_result readFile(const std::string& path);

  // Null when the address is not in the book.
  const Endpoint* find(uint32_t address) const;

 private:
  std::unordered_map<uint32_t, Endpoint> entries_;
};

}  // namespace zarnimesh
