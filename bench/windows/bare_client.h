#pragma once

#include <winsock2.h>

#include <cstdint>

#include "race.h"

namespace velk::bench {

/// The least that a Windows client can do: send, and block until the answer comes.
class BareWinsockClient final : public Client {
 public:
  explicit BareWinsockClient(std::uint16_t port);
  BareWinsockClient(const BareWinsockClient&) = delete;
  BareWinsockClient& operator=(const BareWinsockClient&) = delete;
  ~BareWinsockClient() override;
  void transact() override;

 private:
  SOCKET socket_;
};

}  // namespace velk::bench
