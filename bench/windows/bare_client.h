#pragma once

#include <winsock2.h>

#include <cstdint>

#include "race.h"

namespace velk::bench {

/// The least that a Windows client can do: send, and block until the answer comes.
class BareWinsockClient : public Client {
 public:
  explicit BareWinsockClient(std::uint16_t port);
  BareWinsockClient(const BareWinsockClient&) = delete;
  BareWinsockClient& operator=(const BareWinsockClient&) = delete;
  ~BareWinsockClient() override;
  void transact() override;

 protected:
  /// How many bytes wait in the system.
  [[nodiscard]] u_long waiting() const;

 private:
  SOCKET socket_;
};

/// The least that a client can do that takes no stale answer for the one to its request: it looks first.
class DrainingWinsockClient final : public BareWinsockClient {
 public:
  using BareWinsockClient::BareWinsockClient;
  void transact() override;
};

}  // namespace velk::bench
