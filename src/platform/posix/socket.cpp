#include "platform/posix/socket.h"

#include <netinet/tcp.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/devices.h"
#include "values/runtime_error.h"

namespace velk::platform {
namespace {

/// How long a peer may refuse to take anything.
constexpr int sendPatience = 2000;  // ms

constexpr std::size_t bufferSize = 8192;

}  // namespace

void PosixSocket::connect(const std::string& host, std::uint16_t port) {
  if (state_ != State::closed) throw RuntimeError(RuntimeError::socketNotClosed);
  deviceOpened();
  state_ = State::resolving;
  lookup_.emplace(host, port);
  if (lookup_->finished()) advance(0);
}

void PosixSocket::close() {
  if (state_ == State::closed) return;
  fd_.reset();
  lookup_.reset();
  candidates_.clear();
  hasData_ = false;
  state_ = State::closed;
  deviceClosed();
}

Bytes PosixSocket::receive() {
  requireConnected();
  hasData_ = false;
  std::array<char, bufferSize> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by recv
  Bytes all;
  for (;;) {
    const auto n = ::recv(fd_.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
    const std::string_view piece(buffer.data(), n > 0 ? static_cast<std::size_t>(n) : 0);
    // Nearly always all there is: made in one step.
    if (all.empty()) {
      all = Bytes(piece);
    } else {
      all += piece;
    }
    const bool ended = n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR);
    if (ended) die();
    if (n < static_cast<ssize_t>(buffer.size())) return all;
  }
}

void PosixSocket::send(std::string_view bytes) {
  requireConnected();
  while (!bytes.empty()) {
    const auto n = ::send(fd_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (n > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
      continue;
    }
    pollfd ready{.fd = fd_.get(), .events = POLLOUT, .revents = 0};
    const bool busy = n < 0 && (errno == EAGAIN || errno == EINTR);
    if (!busy || poll(&ready, 1, sendPatience) == 0) {
      die();
      throw RuntimeError(RuntimeError::badSocketState);
    }
  }
}

pollfd PosixSocket::interest() const {
  switch (state_) {
    case State::resolving:
      return {.fd = lookup_->descriptor(), .events = POLLIN, .revents = 0};
    case State::connecting:
      return {.fd = fd_.get(), .events = POLLOUT, .revents = 0};
    case State::connected:
      return {.fd = fd_.get(), .events = POLLIN, .revents = 0};
    case State::closed:
    case State::dead:
      break;
  }
  return {.fd = -1, .events = 0, .revents = 0};
}

void PosixSocket::advance(short events) {
  if (state_ == State::resolving && lookup_->finished()) {
    candidates_ = lookup_->addresses();
    std::reverse(candidates_.begin(), candidates_.end());
    lookup_.reset();
    connectNext();
  } else if (state_ == State::connecting && events != 0) {
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(fd_.get(), SOL_SOCKET, SO_ERROR, &error, &size);
    if (error == 0) {
      connected();
    } else {
      connectNext();
    }
  } else if (state_ == State::connected && events != 0) {
    hasData_ = true;
  }
}

void PosixSocket::requireConnected() const {
  if (state_ != State::connected) throw RuntimeError(RuntimeError::badSocketState);
}

/// Tries the addresses one after another: a name may have one that the interface does not listen on.
void PosixSocket::connectNext() {
  state_ = State::connecting;
  while (!candidates_.empty()) {
    const SocketAddress address = candidates_.back();
    candidates_.pop_back();
    fd_ = Fd(::socket(address.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!fd_) continue;
    const int result =
        ::connect(fd_.get(), reinterpret_cast<const sockaddr*>(&address.storage), address.size);
    if (result == 0) return connected();
    if (errno == EINPROGRESS) return;
  }
  die();
}

void PosixSocket::connected() {
  state_ = State::connected;
  const int on = 1;
  setsockopt(fd_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void PosixSocket::die() {
  state_ = State::dead;
  fd_.reset();
}

}  // namespace velk::platform
