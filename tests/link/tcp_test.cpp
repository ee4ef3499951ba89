#include "support/real_peers.h"
#include "support/scripted_peer.h"

namespace velk::test {
namespace {

const Bytes good = bytes({0, 8, 9});

/// Data behind the header of kind "S".
Bytes framedS(const Bytes& data) {
  return bytes({static_cast<int>(data.size() & 255), static_cast<int>(data.size() >> 8), 0, 0, 13, 0, 0, 0}) +
         data;
}

class Tcp : public ScriptedLink {
 protected:
  const Bytes headQ = "VELK" + bytes({0, 1, 0, 1, 0, 255});
  const Bytes readQ = headQ + bytes({0, 5, '/', 2, 0x21, 5, 16});
  const Bytes replyQ = headQ + bytes({0, 3, 0, 8, 9});
  const Bytes fastRead = bytes({'*', 2, 2, 0x21, 5, 16, '#'});
  const Bytes fastReply = bytes({'*', 2, 2, 0x21, 5, 16, 0, 8, 9, '#'});

  Bytes read(int attempts = 0) { return serial.ReadCom(2, 5, 16, "V", static_cast<Byte>(attempts)); }

  void check(int function, const Bytes& data, const Bytes& header, const Bytes& reply, const Bytes& result) {
    script.answer(header + data, reply);
    EXPECT_EQ(serial.TranceivTcp(-2, 258, 0, static_cast<Byte>(function), data), result) << function;
  }
};

TEST_F(Tcp, TheFrameFollowsTheSettings) {
  const Bytes echoRead = bytes({'*', 0x21, 5, 16});
  for (const std::string kind : {"Q", "S", "", "q", "QQ", "x"}) {
    openSocket(kind);
    const Bytes reply = kind == "Q" ? replyQ : framedS(fastReply);
    script.answer(kind == "Q" ? readQ : framedS(fastRead), reply);
    EXPECT_EQ(read(), good) << kind;
    script.answer(kind == "Q" ? headQ + bytes({0, 4}) + echoRead : framedS(echoRead), reply);
    serial.NoEcho = false;
    EXPECT_EQ(read(), good) << kind;
    serial.CloseTCP();
  }
}

TEST_F(Tcp, KindQ) {
  openSocket("Q");
  const auto checkQ = [&](int function, Bytes data, int length, const Bytes& reply, const Bytes& result) {
    const Bytes header = "VELK" + bytes({255, 254, 1, 2, 0, function});
    check(function, data, header + bytes({0, length}), header + reply, result);
  };
  const Bytes many(261, 'x');
  checkQ(239, "ab", 0, bytes({0, 4, 5, 6}), bytes({0, 5, 6}));
  checkQ(239, "ab", 0, bytes({1, 4, 5, 6}), bytes({4}));
  checkQ(240, "ab", 2, bytes({3, 4, 5}), bytes({4}));
  checkQ(241, "ab", 2, bytes({3, 4, 5}), bytes({4}));
  checkQ(254, many, 5, bytes({2, 4, 5}), bytes({4}));
  checkQ(255, many, 5, bytes({0, 2, 7, 1, 1, 1}), bytes({7, 1}));
  checkQ(255, "ab", 2, bytes({1, 3}) + many, Bytes(259, 'x'));
  checkQ(255, "ab", 2, bytes({1, 0, 7, 1}), bytes({7, 1}));
  checkQ(255, "ab", 2, bytes({0}), bytes({100}));
  for (std::size_t i = 0; i < headQ.size(); ++i) {
    Bytes foreign = replyQ;
    ++foreign[i];
    script.answer(readQ, foreign);
    EXPECT_EQ(read(), bytes({254})) << "byte " << i << " of the header differs";
  }
}

TEST_F(Tcp, KindS) {
  openSocket("S");
  const Bytes many(261, 'x');
  check(239, "ab", bytes({2, 0, 0, 0, 13, 0, 0, 0}), framedS("M"), "100");
  check(240, "ab", bytes({2, 0, 0, 0, 14, 0, 0, 0}), framedS("M"), "M");
  check(241, "ab", bytes({2, 0, 0, 0, 15, 0, 0, 0}), framedS(""), bytes({100}));
  check(242, many, bytes({5, 1, 0, 0, 13, 0, 0, 0}), framedS(many), "100");
  EXPECT_EQ(serial.TranceivTcp(1, 1, 0, 7, Bytes(65536, 'x')), bytes({100})) << "too long for its field";
  const auto checkRead = [&](const char* why, const Bytes& reply, const Bytes& result) {
    script.answer(framedS(fastRead), reply);
    EXPECT_EQ(read(), result) << why;
  };
  checkRead("a frame that starts later is cut by the same length", framedS("x" + fastReply), good + "#");
  checkRead("a length that looks like a start", framedS(Bytes(544, 'x') + fastReply), good + "#");
  checkRead("a length that looks like a start, and no frame", framedS(Bytes(554, 'x')), bytes({252}));
  checkRead("half of the start in the header", bytes({1, 0, 0, 0, 13, 0, 0, '*', 2}), bytes({252}));
  checkRead("a byte less than the length tells", framedS(fastReply).substr(0, 17), bytes({254}));
  checkRead("a byte more", framedS(fastReply) + "#", bytes({254}));
  checkRead("no room for the header", framedS(fastReply.substr(0, 6)), bytes({100}));
  checkRead("nothing behind it", framedS(fastReply.substr(0, 7)), {});
  checkRead("no length", "x", bytes({100}));
}

TEST_F(Tcp, AReplyMayTakeTwoSecondsAndComesInOnePiece) {
  openSocket("Q");
  script.on(readQ, {{replyQ, 1999ms}}).on(readQ);
  EXPECT_EQ(read(), good);
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(read(), bytes({252})); }), 2000ms);
  script.on(readQ, {{headQ}, {"late", 5ms}}).answer(readQ, replyQ);
  EXPECT_EQ(read(), bytes({100}));
  host.block(platform::Source::nothing, 10ms, platform::Messages::held);
  EXPECT_EQ(read(), good) << "what came late is dropped before the next request";
  // Attempts only lengthen the wait. The clock counts twice: one from six in the morning ends after noon.
  for (const int attempts : {1, 3}) {
    Bytes request = readQ;
    request[8] = character(attempts);
    script.on(request, {{request.substr(0, 10) + replyQ.substr(10), 1h}}).on(request);
    EXPECT_EQ(read(attempts), good);
    host.setClock(6h);
    EXPECT_EQ(timeOf([&] { EXPECT_EQ(read(attempts), bytes({252})); }), 6h + 500ms * (attempts + 1));
  }
}

/// A wait ends on the clock of the day too, when that is set forward, and is no longer when it is set back.
TEST_F(Tcp, TheClockMayBeSetDuringAWait) {
  openSocket("Q");
  host.longestBlock = 100ms;
  const auto waitWith = [&](std::chrono::milliseconds time) {
    host.setClock(12h);
    host.onYield = [&, at = host.elapsed() + 300ms, time] {
      if (host.elapsed() == at) host.setClock(time);
    };
    script.on(readQ);
    return timeOf([&] { EXPECT_EQ(read(), bytes({252})); });
  };
  EXPECT_EQ(waitWith(12h + 2s), 300ms);
  EXPECT_EQ(waitWith(12h + 1950ms), 400ms);
  EXPECT_EQ(waitWith(9h), 2000ms);
  EXPECT_EQ(waitWith(1s), 300ms) << "it reads 1.0";
}

TEST_F(Tcp, HangUpEndsTheWaitAndTheSocketHasToBeClosed) {
  openSocket("Q");
  script.on(readQ, {{.bytes = {}, .after = 100ms, .hangUp = true}});
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(read(), bytes({252})); }), 100ms);
  EXPECT_EQ(read(), bytes({58}));
  EXPECT_EQ(serial.OpenTCP("house", 1000), 58);
  EXPECT_EQ(serial.CloseTCP(), 0);
  EXPECT_EQ(read(), bytes({58}));
}

class OpenTcp : public ScriptedLink {
 protected:
  const Bytes welcome = "Welcome to VELK TCP/IP";
  const Bytes welcomeS = "12345678" + welcome;

  /// The result, the password as it comes back, and the settings TCP, SoortETH and SerAddress.
  using After = std::tuple<int, Bytes, bool, Bytes, int>;

  /// Opens with settings of which each is to change, and closes.
  After open(Bytes passWord, int address) {
    host.listen("house", 40000, [this] { return std::make_unique<ScriptedPeer>(script, false); });
    serial.TCP = serial.NoEcho = false;
    serial.SoortETH = "x";
    serial.SerAddress = 7;
    const int result = serial.OpenTCP("house", 40000 - 65536, passWord, static_cast<Byte>(address));
    EXPECT_TRUE(serial.NoEcho);
    EXPECT_EQ(serial.OpenTCP("house", 1), 58) << "a socket that was used has to be closed";
    serial.CloseTCP();
    return {result, passWord, serial.TCP, serial.SoortETH, serial.SerAddress};
  }

  /// With the password and the address given: what a kind "Q" is sent, what stays with kind "S", which asks
  /// for no login, and the address that is taken. The answer to the login is the result, also when it is
  /// refused.
  void check(const Bytes& given, const Bytes& sent, const Bytes& kept, int address = 2, int taken = 2) {
    const Bytes login = "VELK" + bytes({0, 1, 0, 1, 0, 240, 0});
    script.greet(welcome + " v1", 100ms).answer(login + "\4" + sent, login + "\x11");
    EXPECT_EQ(open(given, address), After(17, sent, true, "Q", taken));
    script.greet(welcomeS);
    EXPECT_EQ(open(given, address), After(0, kept, true, "S", taken));
  }
};

TEST_F(OpenTcp, LogsInWithFourBytesAndTakesBusAddressesFrom2To99) {
  const Bytes zeros(4, '\0');
  check("abcde", "abcd", "abcde");
  check("abcd", "abcd", "abcd");
  check("ab", "ab" + zeros.substr(2), "ab");
  check(" b ", " b " + zeros.substr(3), " b ");
  check("", zeros, zeros);
  check("     ", zeros, zeros);
  check(zeros.substr(3), zeros, zeros.substr(3));
  for (const auto& [given, taken] : {std::pair(0, 2), {1, 2}, {2, 2}, {3, 3}, {99, 99}, {100, 2}, {255, 2}}) {
    check("abcd", "abcd", "abcd", given, taken);
  }
}

TEST_F(OpenTcp, OtherGreetingsAndLateOnesChangeNothingButTheMode) {
  for (const Bytes& greeting : {welcome.substr(0, 21), "1" + welcome, "1234567" + welcome, "1" + welcomeS}) {
    script.greet(greeting);
    EXPECT_EQ(open("ab", 9), After(252, "ab", false, "x", 7)) << greeting;
  }
  script.greet(welcomeS, 1499ms);
  EXPECT_EQ(open("ab", 9), After(0, "ab", true, "S", 9));
  script.greet(welcomeS, 1501ms);
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(open("ab", 9), After(252, "ab", false, "x", 7)); }), 1500ms);
  EXPECT_EQ(serial.OpenTCP("nobody", 1), 252);
}

/// The objects of a thread share its port and its socket; another thread has its own.
TEST(TwoObjects, ShareTheDevicesOfTheirThread) {
  const Pty line;
  Serial one;
  Serial other;
  platform::threadHost().port().open(Pty::number, {});
  platform::threadHost().socket().connect("127.0.0.1", 1);
  std::thread([] { EXPECT_EQ(Serial().CloseCom(), 84); }).join();
  EXPECT_EQ(one.OpenCom(Pty::number), 56);
  EXPECT_EQ(one.OpenTCP("127.0.0.1", 1), 58);
  EXPECT_EQ(other.CloseCom(), 0);
  EXPECT_EQ(other.CloseTCP(), 0);
  EXPECT_FALSE(platform::threadHost().socket().isOpen());
}

}  // namespace
}  // namespace velk::test
