#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "values/bytes.h"

namespace velk::cli {

/// A connection that carries bytes both ways: a socket, a pseudo terminal or a serial device.
class Stream {
 public:
  virtual ~Stream() = default;

  /// What has come in, at the latest after `longest`; empty when nothing has, nothing when the connection has
  /// ended.
  virtual std::optional<Bytes> receive(std::chrono::milliseconds longest) = 0;

  virtual void send(std::string_view bytes) = 0;

  /// Ends a `receive` that another thread waits in, and those to come; what it returns means nothing.
  virtual void wake() {}
};

}  // namespace velk::cli
