#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace velk::bench {

/// A child process that ends with this object, and with its parent.
class Child {
 public:
  /// Runs `serve` in the child.
  template <class Serve>
  explicit Child(Serve serve) : id_(fork()) {
    if (id_ < 0) throw std::runtime_error("no child process");
    if (id_ > 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    serve();
    _exit(0);
  }
  Child(Child&& other) noexcept : id_(std::exchange(other.id_, 0)) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  Child& operator=(Child&&) = delete;
  ~Child() {
    if (id_ <= 0) return;
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }

 private:
  pid_t id_;
};

}  // namespace velk::bench
