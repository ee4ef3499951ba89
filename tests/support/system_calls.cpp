#include "support/system_calls.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <ctime>
#include <utility>

namespace velk::test {
namespace {

thread_local std::function<Answer(const Call& call)> current;

/// What the watcher answers, else what the system does. The watcher's own calls are not watched.
template <class... Arguments>
long answerTo(long number, Arguments... arguments) {
  Answer answer;
  if (current) {
    auto watcher = std::exchange(current, nullptr);
    answer = watcher({number, {(long)arguments...}});
    current = std::move(watcher);
  }
  if (!answer) return syscall(number, arguments...);
  if (*answer >= 0) return *answer;
  errno = static_cast<int>(-*answer);
  return -1;
}

}  // namespace

Watch::Watch(std::function<Answer(const Call& call)> watcher) {
  current = std::move(watcher);
}

Watch::~Watch() {
  current = nullptr;
}

}  // namespace velk::test

using velk::test::answerTo;

// In front of the system's own.
extern "C" {

int open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const auto mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return static_cast<int>(answerTo(SYS_openat, AT_FDCWD, path, flags, mode));
}

int ioctl(int fd, unsigned long request, ...) noexcept {
  va_list more;
  va_start(more, request);
  void* const argument = va_arg(more, void*);
  va_end(more);
  return static_cast<int>(answerTo(SYS_ioctl, fd, request, argument));
}

ssize_t read(int fd, void* to, std::size_t size) {
  return answerTo(SYS_read, fd, to, size);
}

ssize_t write(int fd, const void* from, std::size_t size) {
  return answerTo(SYS_write, fd, from, size);
}

ssize_t recv(int fd, void* to, std::size_t size, int flags) {
  return answerTo(SYS_recvfrom, fd, to, size, flags, nullptr, nullptr);
}

ssize_t send(int fd, const void* from, std::size_t size, int flags) {
  return answerTo(SYS_sendto, fd, from, size, flags, nullptr, 0L);
}

int ppoll(pollfd* watched, nfds_t count, const timespec* limit, const sigset_t* mask) {
  timespec rest = *limit;  // which the system counts down
  return static_cast<int>(answerTo(SYS_ppoll, watched, count, &rest, mask, 0L));
}

int eventfd(unsigned int count, int flags) noexcept {
  return static_cast<int>(answerTo(SYS_eventfd2, count, flags));
}

int clock_gettime(clockid_t clock, timespec* time) noexcept {
  return static_cast<int>(answerTo(SYS_clock_gettime, clock, time));
}

}  // extern "C"
