#include "platform/posix/socket.h"

#include <fcntl.h>
#include <netinet/tcp.h>

#include <cerrno>
#include <utility>

#include "platform/devices.h"
#include "platform/posix/poll.h"
#include "values/runtime_error.h"

namespace velk::platform {
namespace {

/// How long a peer may refuse to take anything.
constexpr std::chrono::seconds sendPatience(2);

/// More than any reply; it grows when a peer has sent more.
constexpr std::size_t bufferSize = 1024;

/// A receiving call blocks for three quarters of a wait at most, and not at all in a short one: the system
/// ends it late, by up to an eighth of its time-out. What is left of the wait is left to a poll, whose clock
/// is exact.
constexpr std::chrono::milliseconds shortWait(100);

}  // namespace

void PosixSocket::connect(const std::string& host, std::uint16_t port) {
  requireClosed();
  reach_ = {};
  lookup_.emplace(host, port);
  deviceOpened();
  state_ = State::resolving;
  if (lookup_->finished()) connectNext();
}

void PosixSocket::close() {
  if (state_ == State::closed) return;
  fd_.reset();
  lookup_.reset();
  arrived_ = 0;
  state_ = State::closed;
  deviceClosed();
}

std::string_view PosixSocket::receive() {
  if (arrived_ == 0) {
    requireConnected();
    take(MSG_DONTWAIT);
  }
  return {buffer_.data(), std::exchange(arrived_, 0)};
}

void PosixSocket::send(std::string_view bytes) {
  requireConnected();
  while (!bytes.empty()) {
    const auto n = ::send(fd_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (n != -1) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
      continue;
    }
    const bool busy = errno == EAGAIN || errno == EINTR;
    if (!busy || poll(fd_.get(), POLLOUT, sendPatience) == 0) {
      die();
      throw RuntimeError(RuntimeError::badSocketState);
    }
  }
}

void PosixSocket::wait(std::chrono::nanoseconds longest) {
  if (isDead()) return;
  if (state_ == State::connected && longest > shortWait) {
    // The usual case, in one call: polling first would be a second one.
    setReceiveTime(longest);
    take(0);
  } else {
    const int watched = state_ == State::resolving ? lookup_->descriptor() : fd_.get();
    const short event = state_ == State::connecting ? POLLOUT : POLLIN;
    if (poll(watched, event, longest) > 0) advance();
  }
}

/// Carries on with what a poll has reported.
void PosixSocket::advance() {
  if (state_ == State::resolving) {
    if (lookup_->finished()) connectNext();
  } else if (state_ == State::connecting) {
    int error{};
    socklen_t size = sizeof error;
    getsockopt(fd_.get(), SOL_SOCKET, SO_ERROR, &error, &size);
    if (error == 0) {
      connected();
    } else {
      failed(error, ECONNREFUSED);
      connectNext();
    }
  } else {
    take(MSG_DONTWAIT);
  }
}

/// Tries the addresses one after another: a name may have one that the interface does not listen on.
void PosixSocket::connectNext() {
  state_ = State::connecting;
  while (const auto address = lookup_->next()) {
    reach_.stage = Reach::Stage::trying;
    fd_ = Fd(::socket(address->storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (fd_ && (::connect(fd_.get(), address->get(), address->size) == 0 || errno == EINPROGRESS)) return;
    failed(errno, ECONNREFUSED);
  }
  die();
}

void PosixSocket::connected() {
  state_ = State::connected;
  reach_.stage = Reach::Stage::connected;
  lookup_.reset();
  const int on = 1;
  setsockopt(fd_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  fcntl(fd_.get(), F_SETFL, 0);
  receiveTime_ = {};
  buffer_.resize(bufferSize);
}

/// A time-out between a half and three quarters of the wait stays, mostly from one transaction to the next.
void PosixSocket::setReceiveTime(std::chrono::nanoseconds longest) {
  if (receiveTime_ >= longest / 2 && receiveTime_ <= longest / 4 * 3) return;
  receiveTime_ = longest / 8 * 5;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(receiveTime_);
  const auto rest = std::chrono::duration_cast<std::chrono::microseconds>(receiveTime_ - seconds);
  const timeval limit{.tv_sec = seconds.count(), .tv_usec = rest.count()};
  setsockopt(fd_.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

/// Adds what has come to the buffer; the first call blocks unless the flags say otherwise.
void PosixSocket::take(int flags) {
  for (;;) {
    const auto n = ::recv(fd_.get(), buffer_.data() + arrived_, buffer_.size() - arrived_, flags);
    if (n <= 0) {
      if (n == 0 || (errno != EAGAIN && errno != EINTR)) die();
      return;
    }
    reach_.hasSpoken = true;
    arrived_ += static_cast<std::size_t>(n);
    if (arrived_ < buffer_.size()) return;
    buffer_.append(buffer_.size(), '\0');
    flags = MSG_DONTWAIT;
  }
}

void PosixSocket::die() {
  state_ = State::dead;
  fd_.reset();
}

}  // namespace velk::platform
