#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "component/serial.h"
#include "simulator/loopback_host.h"
#include "support/bytes.h"

namespace velk::test {

using simulator::Delivery;
using simulator::LoopbackHost;
using namespace std::chrono_literals;

/// What a test expects on the wire, and what comes back for it.
struct Step {
  Bytes request;
  std::vector<Delivery> replies;
};

/// The script of a connection: every request must be the next one of the script, byte for byte, and none may
/// be left over in the end. It keeps a journal of what the host does.
class Script {
 public:
  explicit Script(LoopbackHost& host) : host_(host) {
    host.onYield = [this] { note("y"); };
  }

  Script& on(Bytes request, std::vector<Delivery> replies = {}) {
    steps_.push_back({std::move(request), std::move(replies)});
    return *this;
  }

  /// The same in one piece at once.
  Script& answer(Bytes request, Bytes reply) { return on(std::move(request), {{std::move(reply)}}); }

  Script& greet(Bytes greeting, std::chrono::milliseconds after = 0ms) {
    greeting_ = {{std::move(greeting), after}};
    return *this;
  }

  [[nodiscard]] std::vector<Delivery> greeting() const { return greeting_; }

  std::vector<Delivery> take(std::string_view bytes) {
    note(">");
    received_ += bytes;
    if (steps_.empty()) {
      ADD_FAILURE() << "unexpected request: " << testing::PrintToString(received_);
      return {};
    }
    const Step& step = steps_.front();
    if (received_.size() < step.request.size()) return {};
    EXPECT_EQ(received_, step.request);
    received_.clear();
    std::vector<Delivery> replies = step.replies;
    steps_.pop_front();
    return replies;
  }

  [[nodiscard]] bool isDone() const { return steps_.empty() && received_.empty(); }

  void note(const char* mark) {
    const auto time = host_.elapsed() - std::exchange(noted_, host_.elapsed());
    if (time > 0ms) journal_ += std::to_string(time.count());
    journal_ += mark;
  }

  /// What the host has done since the last call: ">" bytes sent, "y" messages dispatched, "B" a line break,
  /// noted when it ends, and in between the milliseconds that passed.
  std::string journal() {
    note("");
    return std::exchange(journal_, {});
  }

 private:
  LoopbackHost& host_;
  std::vector<Delivery> greeting_;
  std::deque<Step> steps_;
  Bytes received_;
  std::chrono::milliseconds noted_{0};
  std::string journal_;
};

/// A peer that plays a script; in echo mode it echoes each byte first.
class ScriptedPeer final : public simulator::Peer {
 public:
  ScriptedPeer(Script& script, bool echoes) : script_(script), echoes_(echoes) {}

  std::vector<Delivery> connected() override { return script_.greeting(); }

  std::vector<Delivery> received(std::string_view bytes) override {
    std::vector<Delivery> deliveries = script_.take(bytes);
    if (echoes_) deliveries.insert(deliveries.begin(), {.bytes = Bytes(bytes)});
    return deliveries;
  }

  void lineBreak() override { script_.note("B"); }

 private:
  Script& script_;
  bool echoes_;
};

/// A `Serial` in front of a script, over the serial line or TCP.
class ScriptedLink : public testing::Test {
 protected:
  /// Opens the serial port. The echoes of echo mode are the peer's, unless the script holds them.
  void openSerial(bool fast, bool peerEchoes = true) {
    host.plugIn(1, [=, this] { return std::make_unique<ScriptedPeer>(script, peerEchoes && !fast); });
    ASSERT_EQ(serial.OpenCom(1, 9600, fast), 0);
    serial.FlgBreak = false;
    script.journal();
  }

  /// Connected as kind "Q" or "S", without the login's part of the script.
  void openSocket(const std::string& kind) {
    script.greet("xx");
    host.listen("house", 1000, [this] { return std::make_unique<ScriptedPeer>(script, false); });
    ASSERT_EQ(serial.OpenTCP("house", 1000), 252);
    serial.TCP = true;
    serial.SoortETH = kind;
  }

  /// How long a call takes.
  template <class Call>
  std::chrono::milliseconds timeOf(Call call) {
    const auto start = host.elapsed();
    call();
    return host.elapsed() - start;
  }

  void TearDown() override { EXPECT_TRUE(script.isDone()) << "the script was not played to its end"; }

  LoopbackHost host;
  Script script{host};
  Serial serial{host};
};

}  // namespace velk::test
