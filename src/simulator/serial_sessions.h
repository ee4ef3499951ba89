#pragma once

#include "simulator/session.h"

namespace velk::simulator {

/// The serial interface in echo mode: every byte is echoed at once; behind the last byte of a request comes
/// the reply, status and data.
class EchoSession final : public Session {
 public:
  using Session::Session;
  Deliveries received(std::string_view bytes) override;

 private:
  void forget() override { frame_.clear(); }
  void take(char byte, Deliveries& out);

  Bytes frame_;  ///< the request so far, from its "*" on
  Plan plan_;    ///< the plan for that request
};

/// The serial interface in fast mode: whole frames from "*" to "#".
class FastSession final : public BufferedSession {
 public:
  using BufferedSession::BufferedSession;

 private:
  std::size_t take(std::string_view buffer, Deliveries& out) override;
  std::size_t takeMemoryRequest(std::string_view buffer, Deliveries& out);
};

/// What a fast-mode frame turns out to be.
struct FastFrame {
  std::size_t length = 0;  ///< 0: not complete yet
  bool valid = false;      ///< false: no frame; one byte is to be skipped
};

/// Looks at a text that starts with a "*" of a memory request.
FastFrame memoryFrameIn(std::string_view text);

/// A memory request's reply in fast mode: the request's header, status, data and "#".
Bytes fastReply(std::string_view frame, const Reply& reply, const Plan& plan);

/// A fast-mode frame that is not for the host.
Bytes foreignFrame(Byte busAddress);

/// Where a fast-mode frame holds the bus address, and where its request starts.
constexpr std::size_t addressInFrame = 2;
constexpr std::size_t requestInFrame = 3;

}  // namespace velk::simulator
