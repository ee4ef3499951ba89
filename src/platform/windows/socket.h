#pragma once

#include <optional>

#include "platform/tcp_socket.h"
#include "platform/windows/overlapped_io.h"
#include "platform/windows/resolver.h"

namespace velk::platform {

/// An owned socket.
class UniqueSocket {
 public:
  UniqueSocket() = default;
  ~UniqueSocket() { reset(); }
  UniqueSocket(const UniqueSocket&) = delete;
  UniqueSocket& operator=(const UniqueSocket&) = delete;

  void reset(SOCKET socket = INVALID_SOCKET) {
    if (socket_ != INVALID_SOCKET) closesocket(socket_);
    socket_ = socket;
  }

  [[nodiscard]] SOCKET get() const { return socket_; }
  explicit operator bool() const { return socket_ != INVALID_SOCKET; }

 private:
  SOCKET socket_ = INVALID_SOCKET;
};

/// A TCP socket that never blocks but in `Host::block`.
class WindowsSocket final : public TcpSocket {
 public:
  WindowsSocket() = default;
  ~WindowsSocket() override { close(); }
  WindowsSocket(const WindowsSocket&) = delete;
  WindowsSocket& operator=(const WindowsSocket&) = delete;

  void connect(const std::string& host, std::uint16_t port) override;
  void close() override;
  [[nodiscard]] bool hasData() const override { return arrived_; }
  std::string_view receive() override;
  void send(std::string_view bytes) override;

  /// Has the system fetch what comes. True when something has come already, so that there is nothing to wait
  /// for: that spares a quick answer the dearest call of a transaction.
  bool startReceiving();

  /// What to wait for; null is nothing.
  [[nodiscard]] HANDLE event() const;

  /// Carries on with what has happened.
  void advance();

 private:
  void takeReading();
  void takeWaiting();
  void connectNext();
  bool startConnecting(const SocketAddress& address);
  void connected();
  void die();

  std::optional<Lookup> lookup_;  ///< while there may be an address to try
  UniqueSocket socket_;
  Handle connectEvent_;
  bool arrived_ = false;  ///< the reading has bytes that have not been given out
  Bytes received_;
  OverlappedIo reading_;  ///< runs from a wait until something comes
};

}  // namespace velk::platform
