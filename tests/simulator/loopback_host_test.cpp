#include "simulator/loopback_host.h"

#include <gtest/gtest.h>

#include "support/bytes.h"

namespace velk::simulator {
namespace {

using platform::Messages;
using platform::Source;
using test::errorOf;
using namespace std::chrono_literals;

/// Answers at once with "a", after 30 ms with "b", and hangs up after 50 ms.
class Timed final : public Peer {
 public:
  explicit Timed(std::string& seen) : seen_(seen) {}
  std::vector<Delivery> connected() override { return {{.bytes = "hello"}}; }
  std::vector<Delivery> received(std::string_view bytes) override {
    seen_ += bytes;
    return {{.after = 50ms, .hangUp = true}, {.bytes = "b", .after = 30ms}, {.bytes = "a"}};
  }
  void lineBreak() override { seen_ += "<break>"; }
  void quiet() override { seen_ += "<quiet>"; }

 private:
  std::string& seen_;
};

class LoopbackHostTest : public testing::Test {
 protected:
  LoopbackHostTest() {
    const auto makePeer = [this] { return std::make_unique<Timed>(seen); };
    host.plugIn(3, makePeer);
    host.listen("house", 7, makePeer);
  }

  std::string seen;
  LoopbackHost host;
  platform::SerialPort& port = host.port();
  platform::Socket& socket = host.socket();
};

TEST_F(LoopbackHostTest, ASerialLineDeliversByTime) {
  EXPECT_EQ(errorOf([&] { port.open(4, {}); }), 8002);
  EXPECT_EQ(errorOf([&] { port.close(); }), 8012);
  EXPECT_EQ(errorOf([&] { port.read(); }), 8018);
  port.open(3, {});
  EXPECT_EQ(errorOf([&] { port.open(3, {}); }), 8005);
  EXPECT_EQ(port.read(), "hello");
  port.write("x");
  EXPECT_EQ(port.read(), "a");
  const std::tuple<std::chrono::milliseconds, std::chrono::milliseconds, Bytes> rows[] = {
      {10ms, 10ms, ""}, {1h, 30ms, "b"}, {19ms, 49ms, ""}, {1h, 50ms, "gone"}};
  for (const auto& [longest, now, received] : rows) {
    host.block(Source::port, longest, Messages::held);
    EXPECT_EQ(host.elapsed(), now);
    Bytes came = "gone";
    const int error = errorOf([&] { came = port.read(); });
    EXPECT_EQ(error, came == "gone" ? 8020 : 0);
    EXPECT_EQ(came, received) << "after " << now.count() << " ms";
  }
  port.close();
  port.open(3, {});
  host.unplug();
  EXPECT_EQ(errorOf([&] { port.read(); }), 8020);
}

TEST_F(LoopbackHostTest, APeerSeesBreaksAndPauses) {
  port.open(3, {});
  host.transferTime = 2ms;
  port.setBreak(true);
  port.setBreak(false);
  port.write("1");
  host.block(Source::nothing, 499ms, Messages::held);
  port.write("2");
  host.block(Source::nothing, 500ms, Messages::held);
  port.write("3");
  EXPECT_EQ(seen, "<break>12<quiet>3");
  EXPECT_EQ(host.elapsed(), 1005ms);
}

TEST_F(LoopbackHostTest, ASocketThatNobodyAnswersIsInUseAllTheSame) {
  socket.connect("house", 8);
  EXPECT_TRUE(socket.isOpen() && socket.isDead() && !socket.hasData());
  EXPECT_EQ(errorOf([&] { socket.connect("house", 7); }), 40020);
  EXPECT_EQ(errorOf([&] { socket.send("x"); }), 40006);
  EXPECT_EQ(errorOf([&] { socket.receive(); }), 40006);
  socket.close();
  EXPECT_FALSE(socket.isOpen());
  socket.connect("house", 7);
  EXPECT_TRUE(socket.hasData() && !socket.isDead());
  EXPECT_EQ(socket.receive(), "hello");
  socket.send("x");
  host.block(Source::nothing, 49ms, Messages::held);
  EXPECT_EQ(socket.receive(), "ab");
  host.block(Source::socket, 1h, Messages::held);
  EXPECT_EQ(host.elapsed(), 50ms);
  EXPECT_EQ(socket.receive(), "");
  EXPECT_TRUE(socket.isDead()) << "it was hung up";
}

TEST_F(LoopbackHostTest, TimePassesOnlyInWaits) {
  EXPECT_EQ(host.clock(), 36000.0F) << "ten in the morning";
  host.setClock(86'399'999ms);
  EXPECT_EQ(host.clock(), 86400.0F) << "single precision";
  int dispatched = 0;
  host.onYield = [&] { ++dispatched; };
  host.block(Source::port, 2ms, Messages::held);
  EXPECT_EQ(host.clock(), 0.001F);
  host.longestBlock = 100ms;
  host.block(Source::nothing, 1s, Messages::dispatched);
  EXPECT_EQ(host.elapsed(), 102ms);
  EXPECT_EQ(host.steady(), 102ms);
  EXPECT_EQ(dispatched, 1);
}

}  // namespace
}  // namespace velk::simulator
