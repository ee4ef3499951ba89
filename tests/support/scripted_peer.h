#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
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
/// be left over in the end.
class Script {
 public:
  Script& on(Bytes request, std::vector<Delivery> replies = {}) {
    steps_.push_back({std::move(request), std::move(replies)});
    return *this;
  }

  /// The same in one piece at once.
  Script& answer(Bytes request, Bytes reply) {
    return on(std::move(request), {Delivery{.bytes = std::move(reply)}});
  }

  Script& greet(Bytes greeting, std::chrono::milliseconds after = 0ms) {
    greeting_ = {Delivery{.bytes = std::move(greeting), .after = after}};
    return *this;
  }

  [[nodiscard]] std::vector<Delivery> greeting() const { return greeting_; }

  std::vector<Delivery> take(std::string_view bytes) {
    received_ += bytes;
    if (steps_.empty()) {
      ADD_FAILURE() << "unexpected request: " << testing::PrintToString(received_);
      return {};
    }
    const Step& step = steps_.front();
    if (received_.size() < step.request.size()) return {};
    EXPECT_EQ(testing::PrintToString(received_), testing::PrintToString(step.request));
    received_.clear();
    std::vector<Delivery> replies = step.replies;
    steps_.pop_front();
    return replies;
  }

  void countBreak() { ++breaks_; }
  [[nodiscard]] int breaks() const { return breaks_; }
  [[nodiscard]] bool isDone() const { return steps_.empty() && received_.empty(); }

 private:
  std::vector<Delivery> greeting_;
  std::deque<Step> steps_;
  Bytes received_;
  int breaks_ = 0;
};

/// A peer that plays a script; in echo mode it echoes each byte first.
class ScriptedPeer final : public simulator::Peer {
 public:
  ScriptedPeer(Script& script, bool echoes) : script_(script), echoes_(echoes) {}

  std::vector<Delivery> connected() override { return script_.greeting(); }

  std::vector<Delivery> received(std::string_view bytes) override {
    std::vector<Delivery> deliveries;
    if (echoes_) deliveries.push_back({.bytes = Bytes(bytes)});
    for (Delivery& reply : script_.take(bytes)) deliveries.push_back(std::move(reply));
    return deliveries;
  }

  void lineBreak() override { script_.countBreak(); }

 private:
  Script& script_;
  bool echoes_;
};

/// A `Serial` in front of a script, over the serial line or TCP.
class ScriptedLink : public testing::Test {
 protected:
  void openSerial(bool fast) {
    host.plugIn(1, [this, fast] { return std::make_unique<ScriptedPeer>(script, !fast); });
    ASSERT_EQ(serial.OpenCom(1, 9600, fast), 0);
    serial.FlgBreak = false;
    openedAt_ = host.elapsed();
  }

  /// Connected as kind "Q" or "S", without the login's part of the script.
  void openSocket(const std::string& kind) {
    script.greet("xx");
    host.listen("house", 1000, [this] { return std::make_unique<ScriptedPeer>(script, false); });
    ASSERT_EQ(serial.OpenTCP("house", 1000), 252);
    serial.TCP = true;
    serial.SoortETH = kind;
    openedAt_ = host.elapsed();
  }

  /// The time since the link was opened.
  [[nodiscard]] std::chrono::milliseconds spent() const { return host.elapsed() - openedAt_; }

  void TearDown() override { EXPECT_TRUE(script.isDone()) << "the script was not played to its end"; }

  Script script;
  LoopbackHost host;
  Serial serial{host};

 private:
  std::chrono::milliseconds openedAt_{0};
};

}  // namespace velk::test
