// A temporary directory. Its destructor removes it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace platform_test {

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    char name[] = "/tmp/mesh-test-XXXXXX";
    if (mkdtemp(name) == nullptr) {
      throw std::runtime_error("no temporary directory");
    }
    path_ = name;
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace platform_test
