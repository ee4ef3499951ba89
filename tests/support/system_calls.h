#pragma once

#include <sys/syscall.h>

#include <array>
#include <functional>
#include <optional>

namespace velk::test {

/// A call of the system, as the code under test makes it.
struct Call {
  long number;  ///< SYS_read and so on
  std::array<long, 6> arguments;

  /// What an argument (from 0) points at.
  template <class T>
  [[nodiscard]] T& at(std::size_t index) const {
    return *reinterpret_cast<T*>(arguments.at(index));
  }
};

/// What a call returns in the place of the system, an error as its negative number; none: the system answers.
using Answer = std::optional<long>;

/// As long as it lives, asks for an answer to each call of its thread, of those in system_calls.cpp.
class Watch {
 public:
  explicit Watch(std::function<Answer(const Call& call)> watcher);
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
};

}  // namespace velk::test
