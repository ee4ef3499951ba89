#pragma once

#include <chrono>
#include <optional>

#include "platform/posix/fd.h"
#include "platform/posix/resolver.h"
#include "platform/tcp_socket.h"

namespace velk::platform {

/// A TCP socket that never blocks but in `Host::block`.
class PosixSocket final : public TcpSocket {
 public:
  PosixSocket() = default;
  ~PosixSocket() override { close(); }
  PosixSocket(const PosixSocket&) = delete;
  PosixSocket& operator=(const PosixSocket&) = delete;

  void connect(const std::string& host, std::uint16_t port) override;
  void close() override;
  [[nodiscard]] bool hasData() const override { return arrived_ > 0; }
  std::string_view receive() override;
  void send(std::string_view bytes) override;

  /// Waits for news, and carries on with it.
  void wait(std::chrono::nanoseconds longest);

 private:
  void advance();
  void setReceiveTime(std::chrono::nanoseconds longest);
  void take(int flags);
  void connectNext();
  void connected();
  void die();

  std::optional<Lookup> lookup_;  ///< while there may be an address to try
  Fd fd_;
  std::chrono::nanoseconds receiveTime_{};  ///< how long a receiving call blocks
  Bytes buffer_;
  std::size_t arrived_ = 0;  ///< bytes in the buffer that have not been given out
};

}  // namespace velk::platform
