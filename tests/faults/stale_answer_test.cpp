#include <gtest/gtest.h>

#include "link/frames.h"
#include "link/tcp_frames.h"
#include "link/wait.h"
#include "support/scripted_peer.h"

namespace velk::test {
namespace {

/// A reply to an earlier request that comes late: what is caught, and what the frames cannot tell. In every
/// test the answer that belongs to the request holds `good`, the late one `stale`.
class StaleAnswer : public ScriptedLink {
 protected:
  static constexpr Byte good = 0x11;
  static constexpr Byte stale = 0x77;

  static link::Request readAt(Byte dpl) { return {.command = 0x20, .dph = 5, .dpl = dpl, .data = {}}; }

  /// One attempt to read a byte.
  Bytes read(Byte dpl) { return serial.ReadCom(1, 5, dpl, "V", serial.TCP ? 0 : 1); }

  static Bytes fastReply(Byte dpl, Byte value) { return bytes({'*', 2, 2, 0x20, 5, dpl, 0, value, '#'}); }

  static Bytes requestQ(Byte dpl) { return link::requestQ({.data = link::slashFrame(readAt(dpl), 2)}); }
  static Bytes replyQ(const Bytes& payload) {
    return requestQ(0).substr(0, 10) + bytes({0, static_cast<int>(payload.size())}) + payload;
  }

  static Bytes requestS(Byte dpl) { return link::requestS({.data = link::fastFrame(readAt(dpl), 2)}); }
  static Bytes replyS(const Bytes& frame) {
    return bytes({static_cast<int>(frame.size()), 0, 0, 0, 13, 0, 0, 0}) + frame;
  }

  void wait(double seconds) { link::pause(host, link::Seconds(seconds), platform::Messages::dispatched); }
};

const Bytes goodResult = bytes({0, 0x11});
const Bytes staleResult = bytes({0, 0x77});

/// Whatever came before a request is sent is dropped, on every link.
TEST_F(StaleAnswer, FastDropsWhatCameBeforeTheRequest) {
  openSerial(true);
  script.on(link::fastFrame(readAt(1), 2), {Delivery{.bytes = fastReply(1, stale), .after = 1200ms}});
  script.answer(link::fastFrame(readAt(1), 2), fastReply(1, good));
  EXPECT_EQ(read(1), "\xfc");
  wait(1);
  EXPECT_EQ(read(1), goodResult);
}

TEST_F(StaleAnswer, EthernetDropsWhatCameBeforeTheRequest) {
  for (const bool kindQ : {true, false}) {
    openSocket(kindQ ? "Q" : "S");
    const Bytes request = kindQ ? requestQ(1) : requestS(1);
    const auto reply = [=](Byte value) {
      return kindQ ? replyQ(bytes({0, value})) : replyS(fastReply(1, value));
    };
    script.on(request, {Delivery{.bytes = reply(stale), .after = 2200ms}});
    script.answer(request, reply(good));
    EXPECT_EQ(read(1), "\xfc");
    wait(1);
    EXPECT_EQ(read(1), goodResult);
    serial.CloseTCP();
  }
}

/// The reply names its address: the late one is skipped, and the request is sent again.
TEST_F(StaleAnswer, FastSkipsTheAnswerToAnotherAddress) {
  openSerial(true);
  script.on(link::fastFrame(readAt(1), 2), {Delivery{.bytes = fastReply(1, stale), .after = 1010ms}});
  script.on(link::fastFrame(readAt(9), 2), {Delivery{.bytes = fastReply(9, good), .after = 50ms}});
  script.answer(link::fastFrame(readAt(9), 2), fastReply(9, good));
  EXPECT_EQ(read(1), "\xfc");
  EXPECT_EQ(read(9), goodResult);
}

/// No frame carries a number of its own: a late answer to the same request is as good as the right one.
TEST_F(StaleAnswer, FastCannotTellTheAnswerToTheSameAddress) {
  openSerial(true);
  script.on(link::fastFrame(readAt(1), 2), {Delivery{.bytes = fastReply(1, stale), .after = 1010ms}});
  script.on(link::fastFrame(readAt(1), 2), {Delivery{.bytes = fastReply(1, good), .after = 50ms}});
  EXPECT_EQ(read(1), "\xfc");
  EXPECT_EQ(read(1), staleResult);
}

/// A late byte in front of an echo is a wrong echo.
TEST_F(StaleAnswer, EchoTakesALateReplyForAWrongEcho) {
  openSerial(false);
  host.transferTime = 3ms;
  script.on(link::echoFrame(readAt(1)), {Delivery{.bytes = bytes({0, stale}), .after = 1004ms}});
  script.on(link::echoFrame(readAt(9)).substr(0, 2));
  EXPECT_EQ(read(1), "\xfc");
  EXPECT_EQ(read(9), "\xfe");
}

/// Behind the last echo nothing tells whose reply it is, not even the address.
TEST_F(StaleAnswer, EchoCannotTellAnAnswerBehindTheLastEcho) {
  openSerial(false);
  script.on(link::echoFrame(readAt(1)), {Delivery{.bytes = bytes({0, stale}), .after = 1010ms}});
  script.on(link::echoFrame(readAt(9)), {Delivery{.bytes = bytes({0, good}), .after = 50ms}});
  EXPECT_EQ(read(1), "\xfc");
  EXPECT_EQ(read(9), staleResult);
}

/// Kind "Q" repeats the header of the request, in which every memory request is alike.
TEST_F(StaleAnswer, EthernetQTellsOnlyAnotherHeader) {
  openSocket("Q");
  script.on(requestQ(1), {Delivery{.bytes = replyQ(bytes({0, stale})), .after = 2010ms}});
  script.on(requestQ(9), {Delivery{.bytes = replyQ(bytes({0, good})), .after = 50ms}});
  EXPECT_EQ(read(1), "\xfc");
  EXPECT_EQ(read(9), staleResult);

  wait(1);
  Bytes login = replyQ(bytes({0}));
  login[9] = character(link::tcpLogin);
  script.on(requestQ(9), {Delivery{.bytes = login, .after = 100ms}});
  EXPECT_EQ(read(9), "\xfe");
}

/// Kind "S" carries a whole fast-mode frame, but its header is not compared: only the length tells.
TEST_F(StaleAnswer, EthernetSTellsOnlyAnotherLength) {
  openSocket("S");
  script.on(requestS(1), {Delivery{.bytes = replyS(fastReply(1, stale)), .after = 2010ms}});
  script.on(requestS(9), {Delivery{.bytes = replyS(fastReply(9, good)), .after = 50ms}});
  EXPECT_EQ(read(1), "\xfc");
  EXPECT_EQ(read(9), staleResult);

  wait(1);
  script.on(requestS(9), {Delivery{.bytes = replyS(fastReply(9, good)) + "x", .after = 100ms}});
  EXPECT_EQ(read(9), "\xfe");
}

}  // namespace
}  // namespace velk::test
