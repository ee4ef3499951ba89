#pragma once

#include <poll.h>

#include <chrono>

namespace velk::platform {

/// Waits until a descriptor (-1: none) is ready, and returns 1; 0 when the time passed first, -1 when a
/// signal came.
inline int poll(pollfd& watched, std::chrono::nanoseconds longest) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(longest);
  const timespec limit{.tv_sec = seconds.count(), .tv_nsec = (longest - seconds).count()};
  return ppoll(&watched, watched.fd < 0 ? 0 : 1, &limit, nullptr);
}

}  // namespace velk::platform
