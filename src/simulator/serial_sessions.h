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
  std::optional<std::size_t> take(std::string_view buffer, Deliveries& out) override;
  std::optional<std::size_t> takeMemoryRequest(std::string_view buffer, Deliveries& out);
  std::optional<std::size_t> takeShortRequest(std::string_view buffer, Deliveries& out);
};

/// The length of a memory request's frame in fast mode, of which `text` is the beginning; none as long as that
/// does not tell it.
std::optional<std::size_t> memoryFrameLength(std::string_view text);

/// A memory request in fast mode, in a whole frame.
struct FastRequest {
  Byte busAddress;
  link::Request request;
};

/// Reads a whole frame, which has to outlive the request; none when it does not end as a frame does.
std::optional<FastRequest> fastRequestIn(std::string_view frame);

/// A memory request's reply in fast mode: the request's header, status, data and "#".
Bytes fastReply(std::string_view frame, const Reply& reply, const Plan& plan);

/// A fast-mode frame that is not for the host.
Bytes foreignFrame(Byte busAddress);

}  // namespace velk::simulator
