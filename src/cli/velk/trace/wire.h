#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cli/velk/trace/exchange.h"

namespace velk::cli {

/// Something that went over a link.
struct WireEvent {
  std::chrono::nanoseconds begun{};              ///< on the host's steady clock
  std::optional<std::chrono::nanoseconds> took;  ///< until the reply was there
  std::string text;                              ///< as a trace has it
  std::optional<Exchange> exchange = {};         ///< when it was a memory request
};

/// Is told of each event when it is over.
using WireListener = std::function<void(const WireEvent&)>;

/// Reads the bytes of a link, of any kind, as requests and replies. Passwords are read over: nothing of a login
/// but its outcome is told.
class Wire {
 public:
  using Time = std::chrono::nanoseconds;

  explicit Wire(WireListener listener) : listener_(std::move(listener)) {}

  /// Bytes that were sent in one piece.
  void sentToSocket(Time now, std::string_view bytes);
  void sentToPort(Time now, std::string_view bytes);

  /// Bytes that came in one piece, or none when a serial port was looked at in vain.
  /// @param awaited whether somebody waited for them; else they are dropped
  void received(Time now, std::string_view bytes, bool awaited);

  /// Anything else, which ends what is waited for: "line break", "close".
  void note(Time now, const std::string& text);

  /// The request that is waited for, if any, gets no answer any more, for a reason.
  void giveUp(const std::string& why);

 private:
  enum class Kind : Byte { q, s, fast, echo };

  /// What was sent and is not answered yet.
  struct Pending {
    Time begun{};
    Kind kind{};
    Bytes sent;                            ///< as it went over the link
    std::optional<TracedRequest> request;  ///< when it is one to the memory
    std::string text;                      ///< else what it is
    bool isLogin = false;
    Bytes received = {};
    Time arrived{};
    bool late = false;
    int pieces = 0;       ///< echo mode: how many have come since the last byte was sent
    bool isOver = false;  ///< echo mode: nothing was found behind them
  };

  void begin(Pending pending);
  void finish(std::optional<simulator::Reply> reply, const std::string& outcome);
  [[nodiscard]] bool echoGoesOn() const;
  [[nodiscard]] std::string echoFault() const;
  [[nodiscard]] std::optional<Bytes> payload() const;
  [[nodiscard]] std::string oddity() const;
  void tryToFinish();

  WireListener listener_;
  std::optional<Pending> pending_;
};

}  // namespace velk::cli
