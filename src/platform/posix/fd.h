#pragma once

#include <unistd.h>

#include <utility>

namespace velk::platform {

/// An owned file descriptor.
class Fd {
 public:
  /// What stands for no descriptor, here and in a poll.
  static constexpr int none = -1;

  Fd() = default;
  explicit Fd(int fd) : fd_(fd) {}
  Fd(Fd&& other) noexcept { std::swap(fd_, other.fd_); }
  Fd& operator=(Fd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  ~Fd() { reset(); }

  void reset() {
    if (fd_ != none) ::close(fd_);
    fd_ = none;
  }

  [[nodiscard]] int get() const { return fd_; }
  explicit operator bool() const { return fd_ != none; }

 private:
  int fd_ = none;
};

}  // namespace velk::platform
