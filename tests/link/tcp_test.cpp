#include "support/scripted_peer.h"
#include "values/runtime_error.h"

namespace velk::test {
namespace {

const Bytes headQ = "VELK" + bytes({0, 1, 0, 1, 0, 255});
const Bytes loginQ = "VELK" + bytes({0, 1, 0, 1, 0, 240});
constexpr auto welcome = "Welcome to VELK TCP/IP";

class TcpQ : public ScriptedLink {
 protected:
  void SetUp() override { openSocket("Q"); }
  const Bytes read2 = headQ + bytes({0, 5, '/', 2, 0x21, 5, 16});
};

class TcpS : public ScriptedLink {
 protected:
  void SetUp() override { openSocket("S"); }
  const Bytes read2 = bytes({7, 0, 0, 0, 13, 0, 0, 0, '*', 2, 2, 0x21, 5, 16, '#'});
  static Bytes framed(const Bytes& data) {
    return bytes({static_cast<int>(data.size()), 0, 0, 0, 13, 0, 0, 0}) + data;
  }
};

TEST_F(TcpQ, ReadReturnsThePayload) {
  script.answer(read2, headQ + bytes({0, 3, 0, 8, 9}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({0, 8, 9}));
  // A payload is cut to its length field, and shorter than it where the reply is.
  script.answer(read2, headQ + bytes({0, 2, 7, 1, 1, 1}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({7, 1}));
  script.answer(read2, headQ + bytes({1, 0, 7, 1}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({7, 1}));
}

TEST_F(TcpQ, ForeignHeaderShortReplyAndSilence) {
  Bytes foreign = headQ + bytes({0, 3, 0, 8, 9});
  foreign[7] = 2;
  script.answer(read2, foreign);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({254}));
  script.answer(read2, headQ);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({100}));
  script.answer(read2, "V");
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({254}));
  EXPECT_EQ(spent(), 0ms);
  script.on(read2);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({252}));
  EXPECT_EQ(spent(), 2000ms);
}

TEST_F(TcpQ, ReplyInPiecesIsNotPutTogether) {
  script.on(read2, {{.bytes = headQ}, {.bytes = bytes({0, 3, 0, 8, 9}), .after = 5ms}});
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({100}));
  // The rest is dropped before the next request.
  host.block(platform::Source::nothing, 10ms, platform::Messages::held);
  script.answer(read2, headQ + bytes({0, 3, 0, 8, 9}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({0, 8, 9}));
}

TEST_F(TcpQ, AttemptsOnlyLengthenTheWait) {
  Bytes request = read2;
  request[8] = 1;
  Bytes reply = headQ + bytes({0, 1, 0});
  reply[8] = 1;
  script.on(request, {{.bytes = reply, .after = 3600s}});
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({0}));
  // The clock counts twice: from 10:59:59 a wait ends in the evening.
  host.setClock(std::chrono::hours(6));
  script.on(request);
  const auto start = host.elapsed();
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({252}));
  EXPECT_EQ(host.elapsed() - start, std::chrono::hours(6) + 1s);
}

TEST_F(TcpQ, HangUpEndsTheWaitAndTheSocketHasToBeClosed) {
  script.on(read2, {{.bytes = {}, .after = 100ms, .hangUp = true}});
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({252}));
  EXPECT_EQ(spent(), 100ms);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({58}));
  EXPECT_EQ(serial.OpenTCP("house", 1000), 58);
  EXPECT_EQ(serial.CloseTCP(), 0);
  EXPECT_EQ(serial.CloseTCP(), 0);
  EXPECT_TRUE(serial.TCP);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({58}));
}

TEST_F(TcpQ, FunctionsOfTheTransaction) {
  const auto request = [](int function, int length) {
    return "VELK" + bytes({255, 254, 1, 2, 0, function, 0, length}) + "ab";
  };
  const auto reply = [&](int function, const Bytes& rest) {
    return request(function, 0).substr(0, 10) + rest;
  };
  script.answer(request(241, 2), reply(241, bytes({3, 4, 5})));
  EXPECT_EQ(serial.TranceivTcp(-2, 258, 0, 241, "ab"), bytes({4}));
  script.answer(request(9, 0), reply(9, bytes({0, 4, 5, 6})));
  EXPECT_EQ(serial.TranceivTcp(-2, 258, 0, 9, "ab"), bytes({0, 5, 6}));
  script.answer(request(9, 0), reply(9, bytes({1, 4, 5, 6})));
  EXPECT_EQ(serial.TranceivTcp(-2, 258, 0, 9, "ab"), bytes({4}));
  script.answer(request(9, 0), reply(9, {}));
  EXPECT_EQ(serial.TranceivTcp(-2, 258, 0, 9, "ab"), bytes({100}));
}

TEST_F(TcpS, ReadReturnsStatusAndDataWithoutTheMark) {
  script.answer(read2, framed(bytes({'*', 2, 2, 0x21, 5, 16, 0, 8, 9, '#'})));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({0, 8, 9}));
}

TEST_F(TcpS, BadReplies) {
  const std::vector<std::pair<Bytes, Bytes>> table{
      {framed("abc") + "x", bytes({254})},                // the length does not match
      {framed("abcdefghij"), bytes({252})},               // no frame in it
      {framed(bytes({'*', 2, 2})), bytes({100})},         // a frame without status
      {"x", bytes({100})},                                // no length
      {framed(bytes({'*', 2, 2, 1, 1, 1, 9})), Bytes()},  // nothing behind the header
  };
  for (const auto& [reply, result] : table) {
    script.answer(read2, reply);
    EXPECT_EQ(testing::PrintToString(serial.ReadCom(2, 5, 16, "V")), testing::PrintToString(result));
  }
  EXPECT_EQ(spent(), 0ms);
}

TEST_F(TcpS, FunctionsOfTheTransaction) {
  const auto request = [](int kind) { return bytes({2, 0, 0, 0, kind, 0, 0, 0}) + "ab"; };
  script.answer(request(14), bytes({1, 0, 0, 0, 14, 0, 0, 0, 77}));
  EXPECT_EQ(serial.TranceivTcp(1, 1, 0, 240, "ab"), bytes({77}));
  script.answer(request(15), bytes({0, 0, 0, 0, 15, 0, 0, 0}));
  EXPECT_EQ(serial.TranceivTcp(1, 1, 0, 241, "ab"), bytes({100}));
  script.answer(request(13), bytes({1, 0, 0, 0, 13, 0, 0, 0, 77}));
  EXPECT_EQ(serial.TranceivTcp(1, 1, 0, 7, "ab"), "100");
  EXPECT_EQ(serial.TranceivTcp(1, 1, 0, 7, Bytes(65536, 'x')), bytes({100}));
}

class OpenTcp : public ScriptedLink {
 protected:
  Byte open(InOut<std::string> passWord = "", Byte address = 2) {
    host.listen("house", 40000, [this] { return std::make_unique<ScriptedPeer>(script, false); });
    return serial.OpenTCP("house", static_cast<std::int16_t>(40000 - 65536), *passWord, address);
  }

  void expectLogin(const Bytes& passWord, int answer) {
    script.greet(welcome + std::string(" v1"), 100ms);
    script.answer(loginQ + bytes({0, 4}) + passWord, loginQ + bytes({0, answer}));
  }
};

TEST_F(OpenTcp, LoginUsesFourBytes) {
  const std::vector<std::pair<std::string, Bytes>> table{{"abcdef", "abcd"},
                                                         {"ab", bytes({'a', 'b', 0, 0})},
                                                         {"", bytes({0, 0, 0, 0})},
                                                         {"   ", bytes({0, 0, 0, 0})},
                                                         {bytes({0}), bytes({0, 0, 0, 0})}};
  for (const auto& [given, used] : table) {
    expectLogin(used, 0);
    std::string passWord = given;
    EXPECT_EQ(open(passWord), 0);
    EXPECT_EQ(passWord, used);
    EXPECT_TRUE(serial.TCP && serial.NoEcho);
    EXPECT_EQ(serial.SoortETH, "Q");
    serial.CloseTCP();
  }
}

TEST_F(OpenTcp, RefusedLoginIsTheResultAndTheLinkIsUsedAllTheSame) {
  expectLogin("nope", 17);
  EXPECT_EQ(open("nope", 99), 17);
  EXPECT_TRUE(serial.TCP);
  EXPECT_EQ(serial.SerAddress, 99);
}

TEST_F(OpenTcp, KindSNeedsNoLogin) {
  script.greet(std::string("12345678") + welcome);
  serial.SerAddress = 7;
  std::string passWord = "x";
  EXPECT_EQ(open(passWord, 100), 0);
  EXPECT_EQ(serial.SoortETH, "S");
  EXPECT_EQ(serial.SerAddress, 2);
  EXPECT_EQ(passWord, "x");
}

TEST_F(OpenTcp, AnythingElseChangesNothingButTheMode) {
  for (const auto* greeting : {"Welcome to VELK TCP/I", "1234567Welcome to VELK TCP/IP", "\xFF"}) {
    script.greet(greeting);
    serial.SoortETH = "x";
    EXPECT_EQ(open(), 252) << greeting;
    EXPECT_FALSE(serial.TCP);
    EXPECT_TRUE(serial.NoEcho);
    EXPECT_EQ(serial.SoortETH, "x");
    EXPECT_EQ(open(), 58) << "a socket that was used has to be closed";
    serial.CloseTCP();
  }
}

TEST_F(OpenTcp, GreetingMayTakeOneAndAHalfSeconds) {
  script.greet(std::string("12345678") + welcome, 1499ms);
  EXPECT_EQ(open(), 0);
  serial.CloseTCP();
  script.greet(std::string("12345678") + welcome, 1600ms);
  EXPECT_EQ(open(), 252);
  EXPECT_EQ(spent(), 2999ms);
  serial.CloseTCP();
  EXPECT_EQ(serial.OpenTCP("nobody", 1), 252);
}

}  // namespace
}  // namespace velk::test
