#pragma once

#include "simulator/session.h"

namespace velk::simulator {

/// The Ethernet interface of kind "Q": a greeting, a login with four password bytes, then memory requests
/// ("/" frames) behind a header of twelve bytes. Before a good login every memory request is refused.
class EthernetQSession final : public BufferedSession {
 public:
  using BufferedSession::BufferedSession;
  Deliveries connected() override;

 private:
  std::optional<std::size_t> take(std::string_view buffer, Deliveries& out) override;
  Deliveries logIn(std::string_view header, std::string_view password);
  Deliveries memoryRequest(std::string_view header, std::string_view frame);

  bool loggedIn_ = false;
};

/// The Ethernet interface of kind "S": a greeting with a prefix, no login; fast-mode frames behind a header
/// of eight bytes.
class EthernetSSession final : public BufferedSession {
 public:
  using BufferedSession::BufferedSession;
  Deliveries connected() override;

 private:
  std::optional<std::size_t> take(std::string_view buffer, Deliveries& out) override;
  Deliveries memoryRequest(std::string_view header, std::string_view frame);
};

}  // namespace velk::simulator
