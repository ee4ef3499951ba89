#pragma once

#include <poll.h>

#include <optional>
#include <vector>

#include "platform/posix/fd.h"
#include "platform/posix/resolver.h"
#include "platform/socket.h"

namespace velk::platform {

/// A TCP socket that never blocks but in `Host::block`.
class PosixSocket final : public Socket {
 public:
  PosixSocket() = default;
  ~PosixSocket() override { close(); }
  PosixSocket(const PosixSocket&) = delete;
  PosixSocket& operator=(const PosixSocket&) = delete;

  void connect(const std::string& host, std::uint16_t port) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return state_ != State::closed; }
  [[nodiscard]] bool hasData() const override { return hasData_; }
  [[nodiscard]] bool isDead() const override { return state_ == State::closed || state_ == State::dead; }
  Bytes receive() override;
  void send(std::string_view bytes) override;

  /// What to poll for; a descriptor of -1 is nothing.
  [[nodiscard]] pollfd interest() const;

  /// Carries on with what a poll has seen.
  void advance(short events);

 private:
  enum class State : std::uint8_t { closed, resolving, connecting, connected, dead };

  void requireConnected() const;
  void connectNext();
  void connected();
  void die();

  State state_ = State::closed;
  bool hasData_ = false;
  std::optional<Lookup> lookup_;
  std::vector<SocketAddress> candidates_;  ///< addresses not tried yet, the next one last
  Fd fd_;
};

}  // namespace velk::platform
