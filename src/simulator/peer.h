#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "values/bytes.h"

namespace velk::simulator {

/// Something that a peer does: after a delay it sends bytes, or it hangs up.
struct Delivery {
  Bytes bytes;
  std::chrono::microseconds after{0};  ///< counted from the bytes that caused it
  bool hangUp = false;
};

/// The far end of one connection: an interface of the controller, or a test's script.
class Peer {
 public:
  virtual ~Peer() = default;

  /// The connection has been made.
  virtual std::vector<Delivery> connected() { return {}; }

  /// Bytes have come in; they may hold a part of a request, or several.
  virtual std::vector<Delivery> received(std::string_view bytes) = 0;

  /// A line break has ended.
  virtual void lineBreak() {}

  /// Bytes come after the line was silent for `frameGap`: a request that stopped half-way is given up.
  virtual void quiet() {}
};

/// Makes the interface of one connection.
using MakePeer = std::function<std::unique_ptr<Peer>()>;

/// The longest pause inside a request. Shorter than a host waits for a reply, so that its next attempt finds
/// the interface ready.
constexpr std::chrono::milliseconds frameGap{500};

}  // namespace velk::simulator
