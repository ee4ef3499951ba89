/// Greeting and login: a raw greeting, raw login replies, any password and address.

#include "link/tcp_frames.h"
#include "support/bench.h"
#include "support/target.h"

namespace velk::fuzz {
namespace {

/// Sends what the fuzzer says, at connecting and at each request.
class RawPeer final : public simulator::Peer {
 public:
  explicit RawPeer(Input& input) : input_(input) {}
  std::vector<simulator::Delivery> connected() override { return next(); }
  std::vector<simulator::Delivery> received(std::string_view bytes) override {
    require(bytes.size() == 16 && bytes.substr(0, 4) == "VELK", "the login is a header and a password");
    return next();
  }

 private:
  std::vector<simulator::Delivery> next() {
    const auto after = std::chrono::milliseconds(input_.byte() * 16);
    Bytes bytes = input_.text();
    const bool hangUp = bytes.empty();
    return {{.bytes = std::move(bytes), .after = after, .hangUp = hangUp}};
  }

  Input& input_;
};

}  // namespace

void run(Input input) {
  simulator::LoopbackHost host;
  Serial serial(host);
  std::string password = input.text();
  const Byte address = input.byte();
  Input replies = input;
  host.listen("house", 1000, [&] { return std::make_unique<RawPeer>(replies); });

  const auto greetingDelay = std::chrono::milliseconds(input.byte() * 16);
  const Bytes greeting = input.text();
  const bool inTime = greetingDelay <= std::chrono::milliseconds(1500);
  const auto kind = inTime ? link::kindOfGreeting(greeting) : std::string_view();

  const Byte result = serial.OpenTCP("house", 1000, password, address);
  require(serial.TCP == !kind.empty(), "only a greeting selects the socket");
  require(serial.NoEcho, "the fast mode is set whatever comes");
  require(host.elapsed() <= std::chrono::milliseconds(1500 + 2000), "opening ends in time");
  if (kind.empty()) {
    require(result == 252, "no greeting is no reply");
    return;
  }
  require(serial.SoortETH == kind, "the greeting tells the kind");
  require(kind != "S" || result == 0, "kind S has no login");
  require(kind != "Q" || password.size() == 4, "the password comes back as used");
  require(serial.SerAddress == (address >= 2 && address <= 99 ? address : 2),
          "the address is within its range");
}

}  // namespace velk::fuzz
