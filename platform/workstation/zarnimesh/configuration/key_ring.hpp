// The CURVE keys of a node and of its peers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// A key as text: 40 characters of Z85.
inline constexpr size_t keyTextLength = 40;

class KeyRing {
 public:
  // Reads a file of lines
  //   own PUBLIC SECRET
  //   node ADDRESS PUBLIC
  // with exactly one `own` line. A # at the start of a line starts a comment: keys may contain one.
  // The file must belong to the user and be closed to others.
  [[nodiscard]] mesh_result readFile(const std::string& path);

  // As readFile, for the contents. Errors name the source `name`.
  [[nodiscard]] mesh_result parse(std::string_view text, const std::string& name);

  const std::string& ownPublic() const { return ownPublic_; }
  const std::string& ownSecret() const { return ownSecret_; }

  // Null when the key is unknown.
  const std::string* publicKeyOf(uint32_t address) const;

  const std::unordered_map<uint32_t, std::string>& nodes() const { return nodes_; }

 private:
  bool knows(const std::string& key) const;

  std::string ownPublic_;
  std::string ownSecret_;
  std::unordered_map<uint32_t, std::string> nodes_;
};

}  // namespace zarnimesh
