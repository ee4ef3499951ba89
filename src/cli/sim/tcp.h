#pragma once

#include <memory>
#include <string>
#include <utility>

#include "cli/shared/stream.h"
#include "cli/sim/net.h"

namespace velk::cli {

/// An owned socket of the operating system.
class OwnedSocket {
 public:
  explicit OwnedSocket(net::Descriptor descriptor) : descriptor_(descriptor) {}
  ~OwnedSocket() {
    if (descriptor_ != net::none) net::close(descriptor_);
  }
  OwnedSocket(OwnedSocket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, net::none)) {}
  OwnedSocket(const OwnedSocket&) = delete;
  OwnedSocket& operator=(const OwnedSocket&) = delete;
  OwnedSocket& operator=(OwnedSocket&&) = delete;

  [[nodiscard]] net::Descriptor get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ != net::none; }

 private:
  net::Descriptor descriptor_;
};

/// One accepted connection.
class TcpStream final : public Stream {
 public:
  explicit TcpStream(OwnedSocket socket) : socket_(std::move(socket)) {}

  std::optional<Bytes> receive(std::chrono::milliseconds longest) override;
  void send(std::string_view bytes) override;
  void wake() override { net::end(socket_.get()); }

 private:
  OwnedSocket socket_;
};

/// A port that waits for connections.
class Listener {
 public:
  /// Listens on a numeric address; port 0 takes any free one. Throws std::runtime_error with a sentence.
  Listener(const std::string& address, std::uint16_t port);

  [[nodiscard]] std::uint16_t port() const;

  /// The next connection; none when nobody connects in time.
  std::unique_ptr<TcpStream> accept(std::chrono::milliseconds longest);

  /// Ends an `accept` that another thread waits in, and those to come.
  void wake() { net::end(socket_.get()); }

 private:
  OwnedSocket socket_;
};

}  // namespace velk::cli
