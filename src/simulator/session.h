#pragma once

#include <optional>
#include <vector>

#include "simulator/controller.h"
#include "simulator/faults.h"
#include "simulator/peer.h"
#include "simulator/trace.h"
#include "simulator/watch.h"

namespace velk::simulator {

/// How an interface of the controller behaves.
struct SessionOptions {
  Byte busAddress = 2;              ///< requests to another address are not answered; echo mode carries none
  Bytes password = Bytes(4, '\0');  ///< four bytes that the login of kind "Q" must bring
  Faults faults = {};
  Trace trace = {};            ///< told of each request; may be empty
  Watch* watch = nullptr;      ///< likewise; outlives the session
  std::string interface = {};  ///< what the watch calls it
};

using Deliveries = std::vector<Delivery>;

void append(Deliveries& out, Deliveries more);

/// One connection to the controller. It takes a stream of bytes: requests may come in pieces or several at
/// once, and what is no request is skipped.
class Session : public Peer {
 public:
  Session(Controller& controller, SessionOptions options)
      : controller_(controller),
        options_(std::move(options)),
        connection_(options_.watch == nullptr ? nullptr
                                              : options_.watch->connections.join(options_.interface)) {}

  void lineBreak() override { forget(); }
  void quiet() override { forget(); }

 protected:
  /// Gives up a request that is not complete.
  virtual void forget() = 0;

  /// The plan for the next memory request, which it counts.
  Plan nextPlan();
  [[nodiscard]] Plan loginPlan() const;

  /// Asks the controller, or refuses in its place.
  Reply answer(const link::Request& request, const Plan& plan);

  /// Sends a reply as the plan says, behind as many copies of `foreign` as it asks for.
  static Deliveries deliver(const Plan& plan, Bytes reply, std::string_view foreign);

  void note(const std::string& line) const;

  [[nodiscard]] const SessionOptions& options() const { return options_; }

 private:
  Controller& controller_;
  SessionOptions options_;
  std::shared_ptr<Connection> connection_;  ///< none without a watch
  unsigned requests_ = 0;
};

/// A session whose requests are cut out of a buffer.
class BufferedSession : public Session {
 public:
  using Session::Session;
  Deliveries received(std::string_view bytes) override;

 protected:
  /// Takes what stands at the start of the buffer, a request or something to skip. Returns how many bytes it
  /// was; none when more have to come.
  virtual std::optional<std::size_t> take(std::string_view buffer, Deliveries& out) = 0;

  /// What to take of bytes that are no request: one may begin behind the first of them.
  static constexpr std::size_t firstByte = 1;

  void forget() override { buffer_.clear(); }

 private:
  Bytes buffer_;
};

/// The length of command, address and data together, given the command byte.
constexpr std::size_t requestLength(Byte command) {
  return 3 + ((command & link::write) != 0 ? link::dataCount(command) : 0);
}

/// A request from its command, address and data bytes; `text` holds at least three bytes and outlives it.
link::Request requestFrom(std::string_view text);

}  // namespace velk::simulator
