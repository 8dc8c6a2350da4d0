// A descriptor that is readable when another one is, or when it is told.
#pragma once

namespace zarnimesh {

// For one thread at a time.
class Wakeup {
 public:
  Wakeup() = default;
  ~Wakeup();
  Wakeup(const Wakeup&) = delete;
  Wakeup& operator=(const Wakeup&) = delete;

  // The descriptor; the first call makes it. -1 when the system has none left.
  [[nodiscard]] int open(int other, bool told);

  // Does nothing before open().
  void set(bool told);

 private:
  int both_ = -1;
  int own_ = -1;
  bool told_ = false;
};

}  // namespace zarnimesh
