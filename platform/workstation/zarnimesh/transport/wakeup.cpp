#include "zarnimesh/transport/wakeup.hpp"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <utility>

namespace zarnimesh {

Wakeup::~Wakeup() {
  for (const int file : {both_, own_}) {
    if (file >= 0) {
      close(file);
    }
  }
}

int Wakeup::open(int other, bool told) {
  if (both_ >= 0) {
    return both_;
  }
  const int own = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  const int both = epoll_create1(EPOLL_CLOEXEC);
  epoll_event ofOther{.events = EPOLLIN, .data = {.fd = other}};
  epoll_event ofOwn{.events = EPOLLIN, .data = {.fd = own}};
  if (own < 0 || both < 0 || epoll_ctl(both, EPOLL_CTL_ADD, other, &ofOther) != 0 ||
      epoll_ctl(both, EPOLL_CTL_ADD, own, &ofOwn) != 0) {
    for (const int file : {own, both}) {
      if (file >= 0) {
        close(file);
      }
    }
    return -1;
  }
  own_ = own;
  both_ = both;
  set(told);
  return both_;
}

void Wakeup::set(bool told) {
  if (own_ < 0 || std::exchange(told_, told) == told) {
    return;
  }
  // Neither can fail: the counter is 0 or 1.
  if (told) {
    static_cast<void>(eventfd_write(own_, 1));
  } else {
    eventfd_t ignored = 0;
    static_cast<void>(eventfd_read(own_, &ignored));
  }
}

}  // namespace zarnimesh
