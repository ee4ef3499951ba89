#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "values/bytes.h"

namespace velk::platform {

/// How far a connection came, for those who have to say why there is none.
struct Reach {
  enum class Stage : std::uint8_t {
    lookingUp,  ///< the host's name; when the socket is dead, there is none
    trying,     ///< the host's addresses
    connected,
  };
  Stage stage = Stage::lookingUp;
  int error = 0;           ///< the system's, of the last address that failed; 0: none has
  bool isRefused = false;  ///< whether that says that nothing listens there
  bool hasSpoken = false;  ///< whether the peer has sent anything
};

/// One TCP socket, used by polling. All failures are run-time errors.
///
/// From `connect` to `close` the socket counts as in use, also when the connection is refused or the peer
/// hangs up: it has to be closed before it connects again.
class Socket {
 public:
  virtual ~Socket() = default;

  /// Starts connecting to a host name or address and returns at once; `Host::block` carries the attempt on.
  /// Errors: 40020 the socket is in use; 7 the system has nothing left to look the name up with, and the
  /// socket stays closed.
  virtual void connect(const std::string& host, std::uint16_t port) = 0;

  /// Closes the socket, whatever its state.
  virtual void close() = 0;

  /// Whether the socket is in use.
  [[nodiscard]] virtual bool isOpen() const = 0;

  /// Whether `Host::block` has seen bytes that `receive` has not given out.
  [[nodiscard]] virtual bool hasData() const = 0;

  /// Whether nothing more can come: never connected, refused, or the peer has hung up.
  [[nodiscard]] virtual bool isDead() const = 0;

  /// How far the connection came, until the next one is asked for.
  [[nodiscard]] virtual Reach reach() const { return {}; }

  /// Everything received and not given out yet, valid until the next call of `receive`, `block` or `close`;
  /// empty when nothing is waiting. Error 40006 when the socket is not connected.
  virtual std::string_view receive() = 0;

  /// Sends the bytes. Error 40006 when the socket is not connected.
  virtual void send(std::string_view bytes) = 0;
};

}  // namespace velk::platform
