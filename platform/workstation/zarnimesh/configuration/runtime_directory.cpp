#include "zarnimesh/configuration/runtime_directory.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace zarnimesh {
namespace {

bool isDirectory(const char* name) {
  struct stat status {};
  return stat(name, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::string runtimeDirectoryName(const char* chosen) {
  if (chosen != nullptr) {
    return chosen;
  }
  const char* named = std::getenv("ZARNIMESH_RUNTIME_DIR");
  if (named != nullptr && *named != '\0') {
    return named;
  }
  // The variable may name the deleted directory of an earlier login.
  const char* login = std::getenv("XDG_RUNTIME_DIR");
  if (login != nullptr && *login == '/' && isDirectory(login)) {
    return std::string(login) + "/zarnimesh";
  }
  return "/tmp/zarnimesh-" + std::to_string(geteuid());
}

mesh_result prepareRuntimeDirectory(const std::string& name) {
  const auto refuse = [&](const char* what) {
    return fail(MESH_BAD_CONFIGURATION, "runtime directory %s: %s", name.c_str(), what);
  };
  if (name.empty() || name.front() != '/') {
    return refuse("the path must be absolute");
  }
  if (mkdir(name.c_str(), 0700) != 0 && errno != EEXIST) {
    return refuse(std::strerror(errno));
  }
  struct stat status {};
  if (lstat(name.c_str(), &status) != 0) {
    return refuse(std::strerror(errno));
  }
  if (!S_ISDIR(status.st_mode)) {
    return refuse("it is not a directory");
  }
  if (status.st_uid != geteuid()) {
    return refuse("it belongs to another user");
  }
  if ((status.st_mode & 077) != 0) {
    return refuse("it is open to other users; its mode must be 0700");
  }
  return MESH_OK;
}

}  // namespace zarnimesh
