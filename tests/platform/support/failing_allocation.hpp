// Makes an allocation of the middleware fail. Replaces the process's operator new.
#pragma once

namespace platform_test {

// Which threads it concerns.
enum class Threads { This, Others };

// Makes allocation `number`, from 1, fail during its own lifetime.
class FailingAllocation {
 public:
  explicit FailingAllocation(int number, Threads which = Threads::This);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  static bool happened();
};

}  // namespace platform_test
