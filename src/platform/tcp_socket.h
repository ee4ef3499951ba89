#pragma once

#include <cstdint>

#include "platform/socket.h"
#include "values/runtime_error.h"

namespace velk::platform {

/// How far the connection of a socket is, whatever the system.
class TcpSocket : public Socket {
 public:
  [[nodiscard]] bool isOpen() const final { return state_ != State::closed; }
  [[nodiscard]] bool isDead() const final { return state_ == State::closed || state_ == State::dead; }
  [[nodiscard]] Reach reach() const final { return reach_; }

 protected:
  enum class State : std::uint8_t { closed, resolving, connecting, connected, dead };

  void requireClosed() const {
    if (state_ != State::closed) throw RuntimeError(RuntimeError::socketNotClosed);
  }
  void requireConnected() const {
    if (state_ != State::connected) throw RuntimeError(RuntimeError::badSocketState);
  }

  /// An address has failed; `refusal` is the system's error for one where nothing listens.
  void failed(int error, int refusal) {
    reach_.error = error;
    reach_.isRefused = error == refusal;
  }

  State state_ = State::closed;
  Reach reach_;
};

}  // namespace velk::platform
