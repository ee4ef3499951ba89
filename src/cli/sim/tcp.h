#pragma once

#include <memory>
#include <string>
#include <utility>

#include "cli/shared/stream.h"
#include "cli/sim/net.h"

namespace velk::cli {

/// An owned socket of the operating system.
class SocketHandle {
 public:
  explicit SocketHandle(net::Handle handle) : handle_(handle) {}
  ~SocketHandle() {
    if (handle_ != net::none) net::close(handle_);
  }
  SocketHandle(SocketHandle&& other) noexcept : handle_(std::exchange(other.handle_, net::none)) {}
  SocketHandle(const SocketHandle&) = delete;
  SocketHandle& operator=(const SocketHandle&) = delete;
  SocketHandle& operator=(SocketHandle&&) = delete;

  [[nodiscard]] net::Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != net::none; }

 private:
  net::Handle handle_;
};

/// One accepted connection.
class TcpStream final : public Stream {
 public:
  explicit TcpStream(SocketHandle socket) : socket_(std::move(socket)) {}

  std::optional<Bytes> receive(std::chrono::milliseconds longest) override;
  void send(std::string_view bytes) override;

 private:
  SocketHandle socket_;
};

/// A port that waits for connections.
class Listener {
 public:
  /// Listens on a numeric address; port 0 takes any free one. Throws std::runtime_error with a sentence.
  Listener(const std::string& address, std::uint16_t port);

  [[nodiscard]] std::uint16_t port() const;

  /// The next connection; none when nobody connects in time.
  std::unique_ptr<TcpStream> accept(std::chrono::milliseconds longest);

 private:
  SocketHandle socket_;
};

}  // namespace velk::cli
