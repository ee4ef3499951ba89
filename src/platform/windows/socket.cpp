#include "platform/windows/socket.h"

#include <mstcpip.h>
#include <ws2tcpip.h>

#include "platform/devices.h"
#include "values/runtime_error.h"

namespace velk::platform {
namespace {

/// How long a peer may refuse to take anything.
constexpr int sendPatience = 2000;  // ms

constexpr std::size_t bufferSize = 8192;

/// More than waits in the system when nobody has fetched anything; a peer that never stops gets no further.
constexpr std::size_t mostTaken = 1U << 20U;

/// Once in the life of the process; the system cleans up at its end.
void startWinsock() {
  static const int result = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  static_cast<void>(result);
}

/// The system asks a port that refuses twice more, which takes longer than a wait for a greeting. Where
/// another address is left to try it is asked once.
void askOnce(SOCKET socket) {
  TCP_INITIAL_RTO_PARAMETERS parameters{.Rtt = TCP_INITIAL_RTO_DEFAULT_RTT,
                                        .MaxSynRetransmissions = TCP_INITIAL_RTO_NO_SYN_RETRANSMISSIONS};
  DWORD size = 0;
  WSAIoctl(socket, SIO_TCP_INITIAL_RTO, &parameters, sizeof parameters, nullptr, 0, &size, nullptr, nullptr);
}

bool becomesWritable(SOCKET socket) {
  WSAPOLLFD ready{.fd = socket, .events = POLLWRNORM, .revents = 0};
  return WSAPoll(&ready, 1, sendPatience) > 0;
}

}  // namespace

void WindowsSocket::connect(const std::string& host, std::uint16_t port) {
  requireClosed();
  reach_ = {};
  startWinsock();
  lookup_.emplace(host, port);
  deviceOpened();
  state_ = State::resolving;
  if (lookup_->finished()) advance();
}

void WindowsSocket::close() {
  if (state_ == State::closed) return;
  die();
  lookup_.reset();
  arrived_ = false;
  state_ = State::closed;
  deviceClosed();
}

std::string_view WindowsSocket::receive() {
  received_.clear();
  if (arrived_) {
    takeReading();
    return received_;
  }
  requireConnected();
  // First what a reading has got that was left running by a wait without an answer.
  advance();
  if (arrived_) takeReading();
  if (state_ == State::connected && reading_.state() == OverlappedIo::State::idle) takeWaiting();
  return received_;
}

void WindowsSocket::takeReading() {
  received_ = reading_.bytes();
  reading_.cancel();
  arrived_ = false;
}

/// Fetches what waits in the system. Asking for the count first is cheaper than a reading that finds nothing;
/// it may be that of the first piece alone. That the peer has hung up is left for the next wait to notice.
void WindowsSocket::takeWaiting() {
  u_long count = 0;
  while (received_.size() < mostTaken && ioctlsocket(socket_.get(), FIONREAD, &count) == 0 && count != 0) {
    const std::size_t before = received_.size();
    received_.resize(before + count);
    const int n = ::recv(socket_.get(), received_.data() + before, static_cast<int>(count), 0);
    received_.resize(before + (n > 0 ? static_cast<std::size_t>(n) : 0));
    if (n <= 0) return;
  }
}

void WindowsSocket::send(std::string_view bytes) {
  requireConnected();
  while (!bytes.empty()) {
    const int n = ::send(socket_.get(), bytes.data(), static_cast<int>(bytes.size()), 0);
    if (n > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
    } else if (WSAGetLastError() != WSAEWOULDBLOCK || !becomesWritable(socket_.get())) {
      die();
      throw RuntimeError(RuntimeError::badSocketState);
    }
  }
}

bool WindowsSocket::startReceiving() {
  if (state_ != State::connected) return false;
  if (reading_.state() == OverlappedIo::State::idle) reading_.receive(socket_.get(), bufferSize);
  return reading_.state() != OverlappedIo::State::running;
}

HANDLE WindowsSocket::event() const {
  switch (state_) {
    case State::resolving:
      return lookup_->event();
    case State::connecting:
      return connectEvent_.get();
    case State::connected:
      return reading_.event();
    case State::closed:
    case State::dead:
      break;
  }
  return nullptr;
}

void WindowsSocket::advance() {
  if (state_ == State::resolving && lookup_->finished()) {
    connectNext();
  } else if (state_ == State::connecting) {
    WSANETWORKEVENTS events{};
    WSAEnumNetworkEvents(socket_.get(), connectEvent_.get(), &events);
    if ((events.lNetworkEvents & FD_CONNECT) == 0) return;
    if (events.iErrorCode[FD_CONNECT_BIT] == 0) {
      connected();
    } else {
      failed(events.iErrorCode[FD_CONNECT_BIT], WSAECONNREFUSED);
      connectNext();
    }
  } else if (state_ == State::connected && reading_.hasEnded()) {
    arrived_ = reading_.state() == OverlappedIo::State::done && !reading_.bytes().empty();
    reach_.hasSpoken = reach_.hasSpoken || arrived_;
    if (!arrived_) die();
  }
}

/// Tries the addresses one after another: a name may have one that the interface does not listen on.
void WindowsSocket::connectNext() {
  state_ = State::connecting;
  while (const auto address = lookup_->next()) {
    reach_.stage = Reach::Stage::trying;
    if (startConnecting(*address)) return;
    failed(WSAGetLastError(), WSAECONNREFUSED);
  }
  die();
}

/// The event reports the outcome, also of an attempt that succeeds at once.
bool WindowsSocket::startConnecting(const SocketAddress& address) {
  socket_.reset(WSASocketW(address.storage.ss_family, SOCK_STREAM, 0, nullptr, 0,
                           WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT));
  if (!socket_) return false;
  if (lookup_->hasNext()) askOnce(socket_.get());
  connectEvent_ = makeEvent();
  WSAEventSelect(socket_.get(), connectEvent_.get(), FD_CONNECT);
  return ::connect(socket_.get(), address.get(), address.size) == 0 || WSAGetLastError() == WSAEWOULDBLOCK;
}

void WindowsSocket::connected() {
  state_ = State::connected;
  reach_.stage = Reach::Stage::connected;
  lookup_.reset();
  WSAEventSelect(socket_.get(), nullptr, 0);
  const BOOL on = TRUE;
  setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
}

void WindowsSocket::die() {
  state_ = State::dead;
  reading_.cancel();
  socket_.reset();
  connectEvent_.reset();
}

}  // namespace velk::platform
