#pragma once

#include <poll.h>

#include <chrono>

namespace velk::platform {

/// Waits until a descriptor (-1: none) is ready for an event, POLLIN or POLLOUT, or has failed, and returns
/// 1; 0 when the time passed first, -1 when a signal came.
inline int poll(int fd, short event, std::chrono::nanoseconds longest) {
  pollfd watched{.fd = fd, .events = event};
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(longest);
  const timespec limit{.tv_sec = seconds.count(), .tv_nsec = (longest - seconds).count()};
  return ppoll(&watched, 1, &limit, nullptr);
}

}  // namespace velk::platform
