// Failures, as exceptions. They end at the C interface and in the tool's main().
#pragma once

#include <cerrno>
#include <stdexcept>
#include <string>

namespace inspect {

// What the C interface returns for it.
enum class Cause : int {
  BadInput = EBADMSG,  // the input has a fault
  Usage = EINVAL,      // the caller asks for something that is not there
  System = EIO,        // a file, the output or the middleware failed
  Memory = ENOMEM,     // more memory than the limit, or than there is
};

class Failure : public std::runtime_error {
 public:
  Failure(Cause cause, const std::string& text) : std::runtime_error(text), cause_(cause) {}
  [[nodiscard]] Cause cause() const { return cause_; }

 private:
  Cause cause_;
};

}  // namespace inspect
