#include "support/scripted_peer.h"

namespace velk::test {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds day = 24h;

class SerialLink : public ScriptedLink {
 protected:
  const Bytes head = bytes({'*', 2, 2, 0x21, 5, 16});
  const Bytes fastRead = head + "#";
  const Bytes echoRead = bytes({'*', 0x21, 5, 16});
  const Bytes good = bytes({0, 8, 9});
  const Bytes tail = good + "#";
  const Bytes fastReply = head + tail;

  /// Two bytes at page 5, offset 16.
  Bytes read(Byte attempts = 1) { return serial.ReadCom(2, 5, 16, "V", attempts); }

  Step sent(std::vector<Delivery> replies) {
    return {serial.NoEcho ? fastRead : echoRead, std::move(replies)};
  }

  /// Such a read: the requests with what comes back for each, the result, and the journal of it.
  void play(const char* name, const std::vector<Step>& steps, const Bytes& result, const char* journal,
            Byte attempts = 1) {
    SCOPED_TRACE(name);
    for (const Step& step : steps) script.on(step.request, step.replies);
    EXPECT_EQ(read(attempts), result);
    EXPECT_EQ(script.journal(), journal);
    host.block(platform::Source::nothing, 10s, platform::Messages::held);
    host.port().read();  // what came late
    script.journal();
  }
};

TEST_F(SerialLink, FastModeStepByStep) {
  openSerial(true);
  const Bytes foreign = bytes({'*', 2, 9, 0x21, 5, 16, 0, 8, 9, '#'});
  const Step answered = sent({{fastReply}});
  const Step silent = sent({});
  const Step refused = sent({{head + bytes({7, 8, 9, '#'})}});
  play("answered", {answered}, good, "y>yyy");
  play("refused twice", {refused, refused}, bytes({254}), "y>yyyy>yyy", 2);
  play("refused once", {refused, answered}, good, "y>yyyy>yyy", 2);
  play("three attempts by default", {silent, silent, silent}, bytes({252}), "y>y1000yy>y1000yy>y1000y", 0);
  play("in pieces", {sent({{head, 10ms}, {tail, 999ms}})}, good, "y>y999yy");
  play("late", {sent({{fastReply, 1001ms}})}, bytes({252}), "y>y1000y");
  play("short", {sent({{head}})}, bytes({252}), "y>y1000y");
  play("long", {sent({{fastReply + "#"}})}, bytes({252}), "y>yy");
  // The answer behind a foreign frame is dropped and the request sent again, without spending an attempt.
  play("foreign first", {sent({{foreign + foreign + fastReply}}), answered}, good, "y>yyyyyy>yyy");
  play("a cut answer", {sent({{foreign + head}, {tail, 300ms}}), answered}, good, "y>yy300yyy>yyy");
  play("its pieces", {sent({{foreign}, {"*", 9ms}, {head.substr(1), 99ms}, {tail, 999ms}}), answered}, good,
       "y>yy999yyy>yyy");
  play("foreign alone", {sent({{foreign}, {fastReply, 1001ms}})}, bytes({251}), "y>yy1000yy");
  play("foreign once", {sent({{foreign}}), answered}, good, "y>yy1000yyy>yyy", 2);
  play("a second for all", {sent({{foreign}, {foreign, 600ms}})}, bytes({251}), "y>yy600y400yy");
  play("or more", {sent({{foreign}, {foreign + fastReply, 1000ms}}), answered}, good, "y>yy1000yyyy>yyy");
  play("a # at the sixth place ends no frame", {sent({{"abcde#" + fastReply}})}, bytes({251}), "y>yy1000yy");
  play("a # at the seventh does", {sent({{"abcdef#" + fastReply}}), answered}, good, "y>yyyyy>yyy");
  for (std::size_t i = 0; i < head.size(); ++i) {
    Bytes other = fastReply;
    ++other[i];
    play("one byte of the header differs", {sent({{other + fastReply}}), answered}, good, "y>yyyyy>yyy");
  }
}

TEST_F(SerialLink, EchoModeStepByStep) {
  openSerial(false);
  const Step answered = sent({{good}});
  const Step refused = sent({{bytes({5, 8, 9})}});
  play("answered", {answered}, good, "y>yy>yy>yy>yyyyy");
  play("refused once", {refused, answered}, good, "y>yy>yy>yy>yyyyyy>yy>yy>yy>yyyyy", 2);
  play("refused twice: the reply itself", {refused, refused}, bytes({5, 8, 9}),
       "y>yy>yy>yy>yyyyyy>yy>yy>yy>yyyyy", 2);
  play("long", {sent({{good + "#"}})}, bytes({252}), "y>yy>yy>yy>yyyyy");
  play("short", {sent({{"ab"}, {"c", 1001ms}})}, bytes({252}), "y>yy>yy>yy>yyy1000yy");
  play("in pieces", {sent({{bytes({0, 8})}, {"\t", 999ms}})}, good, "y>yy>yy>yy>yyy999yy");
  serial.CloseCom();

  openSerial(false, false);
  const Step star{"*", {{"*"}}};
  const Step page{"\5", {{"\5"}}};
  const Step silent{"*", {}};
  play("silent", {silent, silent, silent}, bytes({254}), "y>y100yyy>y100yyy>y100yy", 0);
  play("another byte", {star, {"!", {{"?"}}}}, bytes({254}), "y>yy>yyy");
  play("another byte in front", {{"*", {{"x*"}}}}, bytes({254}), "y>yyy");
  play("late", {{"*", {{"*", 101ms}}}}, bytes({254}), "y>y100yy");
  play("what stands behind is dropped, but behind the last it is the reply",
       {{"*", {{"*x", 99ms}}}, {"!", {{"!!!"}}}, page, {"\x10", {{"\x10" + good}}}}, good,
       "y>y99y>yy>yy>yyyyy");
  play("which may be too long", {star, {"!", {{"!"}}}, page, {"\x10", {{"\x10" + good + "#"}}}}, bytes({252}),
       "y>yy>yy>yy>yyyyy");
}

TEST_F(SerialLink, CommandBytes) {
  openSerial(false);
  const struct {
    int count;
    const char* direction;
    int command, length;
  } rows[] = {{1, "V", 0x20, 2},    {0, "V", 0x2F, 17},    {17, "V", 0x20, 2}, {16, "v", 0x0F, 17},
              {127, "H", 0x0E, 16}, {128, "VV", 0x8F, 17}, {129, "", 0x80, 2}, {144, "V", 0xAF, 17}};
  for (const auto& [count, direction, command, length] : rows) {
    const Bytes reply(static_cast<std::size_t>(length), '\0');
    script.answer(bytes({'*', command, 1, 3}), reply);
    EXPECT_EQ(serial.ReadCom(static_cast<Byte>(count), 1, 3, direction, 1), reply) << count << direction;
  }
}

TEST_F(SerialLink, RepliesOfEveryKindHaveTheirLength) {
  const auto check = [&](auto call, const Bytes& request, const Bytes& reply, const Bytes& result,
                         int wrong) {
    openSerial(wrong != 253);
    serial.SerAddress = 44;
    script.answer(request, reply);
    EXPECT_EQ(call(), result);
    for (const Bytes& other : {reply + "#", reply.substr(0, reply.size() - 1)}) {
      script.answer(request, other);
      EXPECT_EQ(call(), bytes({wrong})) << other.size() << " bytes";
    }
    serial.CloseCom();
  };
  const auto write = [&] { return serial.WriteCom(144, 5, 16, "H", "ab", 1); };
  const auto shortReply = [&] { return serial.TranCeiv(0x31, 5, 16, "", 1); };
  const auto instruction0 = [&] { return serial.TranCeiv(0x20, 5, 16, "ab", 1, 0); };
  const Bytes write44 = bytes({'*', 2, 44, 0xCF, 5, 16});
  const Bytes short44 = bytes({'*', 2, 44, 0x31, 5, 16});
  const Bytes zero = bytes({0});
  check(write, bytes({'*', 0xCF, 5, 16, 'a', 'b'}), zero, zero, 253);
  check(shortReply, bytes({'*', 0x31, 5, 16}), zero, zero, 253);
  check(write, write44 + "ab#", write44 + zero + "#", zero + "#", 252);
  check(shortReply, short44 + "#", short44 + zero + "#", zero + "#", 252);
  check(instruction0, "*" + zero + "ab#", "*" + zero + "ab#", zero, 251);

  // Of other instructions no reply length is known: what comes is no answer, and the frame is sent again.
  openSerial(true);
  const Bytes frame = bytes({'*', 7, 'x', '#'});
  script.answer(frame, frame).on(frame, {{"*", 10ms}, {frame.substr(1), 20ms}});
  EXPECT_EQ(serial.TranCeiv(0, 0, 0, "x", 1, 7), bytes({251}));
  EXPECT_EQ(script.journal(), "y>yyyyy>yy10y10y980yy");
}

/// Before the first transaction and at a host's wish, in both modes. What comes meanwhile is dropped.
TEST_F(SerialLink, BreakBeforeATransaction) {
  const auto& [flgBreak, address, noEcho, tcp, kind] = static_cast<link::Settings&>(serial);
  EXPECT_EQ(std::tuple(flgBreak, int{address}, noEcho, tcp, kind), std::tuple(true, 2, false, false, "Q"));
  for (const bool fast : {true, false}) {
    openSerial(fast);
    const Step answered = sent({{fast ? fastReply : good}});
    script.on(answered.request, {answered.replies[0], {"late", 60ms}});
    EXPECT_EQ(read(), good);
    script.journal();
    serial.FlgBreak = true;
    play("with a break", {answered}, good, fast ? "10B100y>yyy" : "10B100y>yy>yy>yy>yyyyy");
    EXPECT_FALSE(serial.FlgBreak);
    serial.CloseCom();
  }
}

TEST_F(SerialLink, OpeningDropsWhatComesMeanwhileAndTakesTheModeInAnyCase) {
  script.greet("noise", 400ms);
  openSerial(false);
  EXPECT_EQ(host.elapsed(), 500ms);
  EXPECT_GT(host.yields(), 0);
  EXPECT_EQ(host.port().read(), "");
  serial.TCP = true;
  EXPECT_EQ(serial.OpenCom(1, 9600, true), 56);
  EXPECT_TRUE(serial.NoEcho && !serial.TCP);
  EXPECT_EQ(serial.CloseCom(), 0);
  EXPECT_EQ(serial.CloseCom(), 84);
}

TEST_F(SerialLink, ClosedPortRaisesItsErrorAndAnUnpluggedOneToo) {
  EXPECT_EQ(errorOf([&] { read(); }), 8018);
  EXPECT_EQ(serial.Ctl_Param("R", 5, ""), 55);
  openSerial(true);
  host.unplug();
  EXPECT_EQ(errorOf([&] { read(); }), 8020);
  EXPECT_EQ(serial.CloseCom(), 0);
  host.onYield = [this] { host.unplug(); };
  EXPECT_EQ(serial.OpenCom(1), 100);
  EXPECT_EQ(serial.CloseCom(), 84) << "what fails while it opens is not open";
  host.onYield = [this] { Serial(host).CloseCom(); };
  EXPECT_EQ(serial.OpenCom(1), 55) << "closed by another object while it opens";
}

TEST_F(SerialLink, WaitsEndEarlyAtMidnightAndInTheFirstSecondOfTheDay) {
  openSerial(true);
  const auto waitAt = [&](milliseconds time) {
    host.setClock(time);
    script.on(fastRead);
    return timeOf([&] { EXPECT_EQ(read(), bytes({252})); });
  };
  for (const auto time : {0ms, 900ms, 1000ms}) EXPECT_EQ(waitAt(time), 0ms) << time.count();
  for (const auto time : {1001ms, 1100ms, day - 1100ms}) EXPECT_EQ(waitAt(time), 1000ms) << time.count();
  for (auto rest = 200ms; rest < 216ms; ++rest) {
    const milliseconds late = waitAt(day - rest) - rest;
    EXPECT_TRUE(late >= 0ms && late <= 5ms) << "ends " << late.count() << " ms after midnight";
  }
  EXPECT_NEAR(static_cast<double>(waitAt(23h).count()), 1000, 8) << "the clock moves in steps of 7.8 ms";
}

/// A pause, which nothing could end, does not become shorter by the clock's steps late in the day.
TEST_F(SerialLink, PausesLastTheirTimeAtEveryHourAndEndAtMidnight) {
  openSerial(true);
  host.longestBlock = 1ms;
  const auto breakAt = [&](milliseconds time) {
    host.setClock(time);
    serial.FlgBreak = true;
    script.answer(fastRead, fastReply);
    return timeOf([&] { EXPECT_EQ(read(), good); });
  };
  for (auto phase = 0ms; phase < 16ms; ++phase) {
    for (const auto hour : {0h, 9h, 20h}) EXPECT_EQ(breakAt(hour + 2s + phase), 110ms) << phase.count();
  }
  EXPECT_EQ(breakAt(1001ms), 110ms);
  EXPECT_EQ(breakAt(1000ms), 0ms) << "the clock reads 1.0";
  EXPECT_LE(breakAt(day - 5ms), 10ms);
}

}  // namespace
}  // namespace velk::test
