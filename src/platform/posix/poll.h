#pragma once

#include <poll.h>

#include <chrono>

namespace velk::platform {

/// Waits until a descriptor (-1: none) is ready; false when the time passed first, or a signal came.
inline bool poll(pollfd& watched, std::chrono::nanoseconds longest) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(longest);
  const timespec limit{.tv_sec = seconds.count(), .tv_nsec = (longest - seconds).count()};
  return ppoll(&watched, watched.fd < 0 ? 0 : 1, &limit, nullptr) > 0;
}

}  // namespace velk::platform
