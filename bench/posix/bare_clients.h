#pragma once

#include <string>

#include "frames.h"
#include "platform/posix/fd.h"
#include "race.h"

/// The least that a client can do: discard what is left over, send, block until the answer comes, fetch it.
namespace velk::bench {

class BareTcpClient final : public Client {
 public:
  explicit BareTcpClient(std::uint16_t port);
  void transact() override;

 private:
  platform::Fd fd_;
};

/// Fast mode: the whole frame at once.
class BareFastClient final : public Client {
 public:
  explicit BareFastClient(const std::string& device);
  void transact() override;

 private:
  platform::Fd fd_;
};

/// Echo mode: byte by byte.
class BareEchoClient final : public Client {
 public:
  explicit BareEchoClient(const std::string& device);
  void transact() override;

 private:
  platform::Fd fd_;
};

}  // namespace velk::bench
