#include <gtest/gtest.h>

#include "simulator/ethernet_sessions.h"
#include "simulator/serial_sessions.h"
#include "support/bytes.h"

namespace velk::simulator {
namespace {

using test::bytes;

constexpr std::string_view password = "\1\2\3\4";

/// A controller with 0x11 and 0x22 at 0x0510 and 0x0511, and one session on it.
template <class S>
class SessionTest : public testing::Test {
 protected:
  SessionTest() {
    Store store;
    store.write({.page = 5, .offset = 0x10}, bytes({0x11, 0x22}));
    controller = std::make_unique<Controller>(store);
    restart({});
  }

  void restart(SessionOptions options) {
    options.password = password;
    session = std::make_unique<S>(*controller, options);
  }

  /// What comes back for the bytes, all in one.
  Bytes send(std::string_view text) {
    Bytes all;
    for (const Delivery& delivery : session->received(text)) all += delivery.bytes;
    return all;
  }

  /// The same, sent byte by byte.
  Bytes sendInPieces(std::string_view text) {
    Bytes all;
    for (const char c : text) all += send({&c, 1});
    return all;
  }

  std::unique_ptr<Controller> controller;
  std::unique_ptr<S> session;
};

using EchoSessionTest = SessionTest<EchoSession>;
using FastSessionTest = SessionTest<FastSession>;
using EthernetQTest = SessionTest<EthernetQSession>;
using EthernetSTest = SessionTest<EthernetSSession>;

TEST_F(EchoSessionTest, EchoesEachByteAndRepliesBehindTheLast) {
  EXPECT_EQ(send("*"), "*");
  EXPECT_EQ(send("\x21\x05"), "\x21\x05");
  EXPECT_EQ(send("\x10"), bytes({0x10, 0, 0x11, 0x22}));
  // A write is longer by its data; its reply is the status alone.
  EXPECT_EQ(send(bytes({'*', 0x61, 5, 0x10, 7})), bytes({'*', 0x61, 5, 0x10, 7}));
  EXPECT_EQ(send("\x08"), bytes({8, 0}));
  EXPECT_EQ(controller->snapshot().read({.page = 5, .offset = 0x10}, 2), "\x07\x08");
  // A short reply, and noise in front of a request: both are echoed, neither disturbs.
  EXPECT_EQ(send("x*\x31\x05\x10"), bytes({'x', '*', 0x31, 5, 0x10, 0}));
}

TEST_F(EchoSessionTest, ForgetsARequestThatStopsHalfWay) {
  send("*\x21");
  session->quiet();
  EXPECT_EQ(send("*\x20\x05\x10"), bytes({'*', 0x20, 5, 0x10, 0, 0x11}));
  send("*\x21\x05");
  session->lineBreak();
  EXPECT_EQ(send("*\x20\x05\x11"), bytes({'*', 0x20, 5, 0x11, 0, 0x22}));
}

TEST_F(EchoSessionTest, LosesTheFrameWithTheByteThatIsNotEchoed) {
  restart({.faults = {"no-echo=2@1", "wrong-echo@2"}});
  EXPECT_EQ(send("*"), "*");
  EXPECT_EQ(send("\x20"), "");
  EXPECT_EQ(send("*"), bytes({255 - '*'}));
  EXPECT_EQ(send("*\x20\x05\x10"), bytes({'*', 0x20, 5, 0x10, 0, 0x11}));
}

TEST_F(FastSessionTest, AnswersWholeFramesAndRepeatsTheirHeader) {
  const Bytes read = bytes({'*', 2, 2, 0x21, 5, 0x10, '#'});
  const Bytes readReply = bytes({'*', 2, 2, 0x21, 5, 0x10, 0, 0x11, 0x22, '#'});
  EXPECT_EQ(send(read), readReply);
  EXPECT_EQ(sendInPieces(read), readReply);
  EXPECT_EQ(send(read + read), readReply + readReply);
  // The data of a write may look like the ends of frames.
  EXPECT_EQ(sendInPieces(bytes({'*', 2, 2, 0x61, 5, 0x10, '#', '*', '#'})),
            bytes({'*', 2, 2, 0x61, 5, 0x10, 0, '#'}));
  EXPECT_EQ(controller->snapshot().read({.page = 5, .offset = 0x10}, 2), "#*");
  EXPECT_EQ(send(bytes({'*', 0, 9, 8, '#'})), bytes({'*', 0, 9, 8, '#'}));
}

TEST_F(FastSessionTest, SkipsGarbageAndRequestsToOthers) {
  const Bytes read = bytes({'*', 2, 2, 0x20, 5, 0x10, '#'});
  const Bytes reply = bytes({'*', 2, 2, 0x20, 5, 0x10, 0, 0x11, '#'});
  const Bytes toAnother = bytes({'*', 2, 3, 0x20, 5, 0x10, '#'});
  EXPECT_EQ(send("#x**" + read), reply);
  EXPECT_EQ(send(toAnother + read), reply);
  // A frame without its "#" is none, and what follows is not lost with it.
  EXPECT_EQ(send(bytes({'*', 2, 2, 0x20, 5, 0x10, '!'}) + read), reply);
  EXPECT_EQ(send(bytes({'*', 0}) + Bytes(100, 'x') + read.substr(0, 0)), "");
  EXPECT_EQ(send(read), reply);
  restart({.busAddress = 3});
  EXPECT_EQ(send(read + toAnother), bytes({'*', 2, 3, 0x20, 5, 0x10, 0, 0x11, '#'}));
}

TEST_F(FastSessionTest, FaultsOnTheWire) {
  const Bytes reply = bytes({'*', 2, 2, 0x20, 5, 0x10, 0, 0x11, '#'});
  const Bytes foreign = bytes({'*', 2, 3, 0x20, 1, 2, 0, 5, '#'});
  restart({.faults = {"header@1", "foreign=2@2", "short=8@3", "status=5@4"}});
  for (const Bytes& expected : {bytes({'*', 3, 2, 0x20, 5, 0x10, 0, 0x11, '#'}), foreign + foreign + reply,
                                reply.substr(0, 8), bytes({'*', 2, 2, 0x20, 5, 0x10, 5, 0, '#'})}) {
    EXPECT_EQ(send(bytes({'*', 2, 2, 0x20, 5, 0x10, '#'})), expected);
  }
}

Bytes requestQ(int function, const Bytes& data) {
  return bytes({'V', 'E', 'L', 'K', 0, 1, 0, 7, 3, function, 0, static_cast<int>(data.size())}) + data;
}

Bytes replyQ(int function, std::initializer_list<int> rest) {
  return bytes({'V', 'E', 'L', 'K', 0, 1, 0, 7, 3, function}) + bytes(rest);
}

TEST_F(EthernetQTest, ServesMemoryOnlyAfterTheLogin) {
  const Bytes read = requestQ(255, bytes({'/', 2, 0x21, 5, 0x10}));
  EXPECT_EQ(session->connected().front().bytes, "Welcome to VELK TCP/IP");
  EXPECT_EQ(send(read), replyQ(255, {0, 1, 1}));
  EXPECT_EQ(send(requestQ(240, "\1\2\3\5")), replyQ(240, {0, 1}));
  EXPECT_EQ(send(read), replyQ(255, {0, 1, 1}));
  EXPECT_EQ(sendInPieces(requestQ(240, Bytes(password))), replyQ(240, {0, 0}));
  EXPECT_EQ(send("noiseVEL" + read + read),
            replyQ(255, {0, 3, 0, 0x11, 0x22}) + replyQ(255, {0, 3, 0, 0x11, 0x22}));
  EXPECT_EQ(send(requestQ(255, bytes({'/', 2, 0x60, 5, 0x10, 9}))), replyQ(255, {0, 1, 0}));
  EXPECT_EQ(controller->snapshot()[(Address{.page = 5, .offset = 0x10})], 9);
  EXPECT_EQ(send(requestQ(241, {})), replyQ(241, {0, 0}));
  EXPECT_EQ(send(read), replyQ(255, {0, 3, 0, 9, 0x22})) << "function 241 changes nothing";
}

TEST_F(EthernetQTest, RefusesWhatIsNoMemoryRequest) {
  send(requestQ(240, Bytes(password)));
  for (const Bytes& frame : {bytes({}), bytes({'/', 2, 0x21}), bytes({'*', 2, 0x21, 5, 0x10}),
                             bytes({'/', 2, 0x61, 5, 0x10, 9}), bytes({'/', 2, 0x21, 5, 0x10, 9})}) {
    EXPECT_EQ(send(requestQ(255, frame)), replyQ(255, {0, 1, 1})) << testing::PrintToString(frame);
  }
  EXPECT_EQ(send(requestQ(255, bytes({'/', 9, 0x21, 5, 0x10}))), "");
  EXPECT_EQ(send(requestQ(242, "x")), replyQ(242, {1, 1}));
}

Bytes framedS(int functionClass, const Bytes& data) {
  return bytes({static_cast<int>(data.size()), 0, 0, 0, functionClass, 0, 0, 0}) + data;
}

TEST_F(EthernetSTest, CarriesFastFramesBehindItsHeader) {
  const Bytes read = framedS(13, bytes({'*', 2, 2, 0x21, 5, 0x10, '#'}));
  const Bytes reply = framedS(13, bytes({'*', 2, 2, 0x21, 5, 0x10, 0, 0x11, 0x22, '#'}));
  EXPECT_EQ(session->connected().front().bytes.substr(8), "Welcome to VELK TCP/IP");
  EXPECT_EQ(sendInPieces(read), reply);
  EXPECT_EQ(send("\xff\xff" + read + read), reply + reply);
  EXPECT_EQ(send(framedS(14, "abcd")), framedS(14, bytes({0})));
  EXPECT_EQ(send(framedS(12, "abcd") + framedS(16, "abcd") + framedS(15, "")), framedS(15, bytes({0})));
  // A frame that does not fill its header, or is for another, is not answered.
  EXPECT_EQ(send(framedS(13, bytes({'*', 2, 2, 0x21, 5, 0x10, '#', 0}))), "");
  EXPECT_EQ(send(framedS(13, bytes({'*', 2, 9, 0x21, 5, 0x10, '#'}))), "");
  EXPECT_EQ(send(read), reply);
  restart({.faults = {"header@1", "foreign@2"}});
  EXPECT_EQ(send(read), framedS(13, bytes({'*', 3, 2, 0x21, 5, 0x10, 0, 0x11, 0x22, '#'})));
  EXPECT_EQ(send(read), framedS(13, bytes({'*', 2, 3, 0x20, 1, 2, 0, 5, '#'})) + reply);
}

}  // namespace
}  // namespace velk::simulator
