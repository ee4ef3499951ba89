#include "support/scripted_peer.h"
#include "values/runtime_error.h"

namespace velk::test {
namespace {

class EchoMode : public ScriptedLink {
 protected:
  void SetUp() override { openSerial(false); }
  const Bytes read2 = bytes({'*', 0x21, 5, 16});
};

class FastMode : public ScriptedLink {
 protected:
  void SetUp() override { openSerial(true); }
  const Bytes head = bytes({'*', 2, 2, 0x21, 5, 16});
  const Bytes read2 = head + "#";
  const Bytes good = head + bytes({0, 8, 9, '#'});
  const Bytes foreign = bytes({'*', 2, 9, 0x21, 5, 16, 0, 8, 9, '#'});
};

TEST_F(EchoMode, ReadReturnsStatusAndData) {
  script.answer(read2, bytes({0, 8, 9}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({0, 8, 9}));
  EXPECT_EQ(spent(), 0ms);
}

TEST_F(EchoMode, WriteReturnsTheStatus) {
  script.answer(bytes({'*', 0x61, 5, 16, 7, 255}), bytes({0}));
  EXPECT_EQ(serial.WriteCom(2, 5, 16, "V", bytes({7, 255})), bytes({0}));
}

TEST_F(EchoMode, CommandByteCarriesCountBankAndDirection) {
  const struct {
    Byte count;
    const char* direction;
    int command;
  } rows[] = {{1, "V", 0x20},  {0, "V", 0x2F},   {17, "V", 0x20},
              {16, "v", 0x0F}, {144, "H", 0x8F}, {129, "", 0x80}};
  for (const auto& row : rows) {
    const auto reply = Bytes(static_cast<std::size_t>((row.command & 15) + 2), '\0');
    script.answer(bytes({'*', row.command, 1, 2}), reply);
    EXPECT_EQ(serial.ReadCom(row.count, 1, 2, row.direction), reply) << int{row.count};
  }
}

TEST_F(EchoMode, BadStatusIsTriedAgainAndReturnedInTheEnd) {
  for (int i = 0; i < 3; ++i) script.answer(read2, bytes({5, 8, 9}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({5, 8, 9}));
  script.answer(read2, bytes({5, 8, 9})).answer(read2, bytes({0, 1, 2}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({0, 1, 2}));
}

TEST_F(EchoMode, WrongLengthCostsASecondAndHasACode) {
  script.answer(read2, bytes({0, 8}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({252}));
  EXPECT_EQ(spent(), 1000ms);
  script.answer(read2, bytes({0, 8, 9, 9}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({252}));
  script.on(bytes({'*', 0x60, 5, 16, 1}));
  EXPECT_EQ(serial.WriteCom(1, 5, 16, "V", bytes({1}), 1), bytes({253}));
  script.on(bytes({'*', 0x31, 5, 16}));
  EXPECT_EQ(serial.TranCeiv(0x31, 5, 16, "", 1), bytes({253}));
  EXPECT_EQ(spent(), 3000ms);
}

TEST_F(EchoMode, ReplyInPiecesIsPutTogether) {
  script.on(read2, {{.bytes = bytes({0}), .after = 10ms},
                    {.bytes = bytes({8}), .after = 400ms},
                    {.bytes = bytes({9}), .after = 999ms}});
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({0, 8, 9}));
  EXPECT_EQ(spent(), 999ms);
}

TEST_F(FastMode, ReadReturnsStatusAndDataWithoutTheFrame) {
  script.answer(read2, good);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({0, 8, 9}));
}

TEST_F(FastMode, WriteReturnsStatusAndMark) {
  const Bytes written = bytes({'*', 2, 44, 0x61, 5, 16});
  serial.SerAddress = 44;
  script.answer(written + "ab#", written + bytes({0, '#'}));
  EXPECT_EQ(serial.WriteCom(2, 5, 16, "V", "ab"), bytes({0, '#'}));
}

TEST_F(FastMode, BadStatusIsAnErrorCode) {
  for (int i = 0; i < 2; ++i) script.answer(read2, head + bytes({7, 8, 9, '#'}));
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 2), bytes({254}));
}

TEST_F(FastMode, NoReplyOrAShortOne) {
  script.on(read2).answer(read2, head).answer(read2, good);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V"), bytes({0, 8, 9}));
  EXPECT_EQ(spent(), 2000ms);
  script.on(read2);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({252}));
}

TEST_F(FastMode, ForeignFrameFirstMeansTheFrameIsSentAgain) {
  // The answer found behind the foreign frame is dropped, and the single attempt is not spent.
  script.answer(read2, foreign + good).answer(read2, good);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({0, 8, 9}));
  script.answer(read2, foreign + foreign + foreign + good).answer(read2, good);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({0, 8, 9}));
  script.on(read2, {{.bytes = foreign}, {.bytes = good, .after = 700ms}}).answer(read2, good);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({0, 8, 9}));
}

TEST_F(FastMode, OnlyForeignFramesEndAfterASecond) {
  script.answer(read2, foreign);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({251}));
  EXPECT_EQ(spent(), 1000ms);
}

TEST_F(FastMode, AHashAmongTheFirstSixBytesEndsNoFrame) {
  script.answer(read2, "ab#" + good);
  EXPECT_EQ(serial.ReadCom(2, 5, 16, "V", 1), bytes({251})) << "the reply went with what stood before it";
  EXPECT_EQ(spent(), 1000ms);
}

TEST_F(FastMode, ShortRequestSucceedsAsASingleZero) {
  const Bytes frame = "*" + bytes({0}) + "ab#";
  script.answer(frame, frame);
  EXPECT_EQ(serial.TranCeiv(0, 0, 0, "ab", 1, 0), bytes({0}));
}

TEST_F(FastMode, OtherInstructionsKnowNoReplyLength) {
  script.on("*" + bytes({7}) + "x#");
  EXPECT_EQ(serial.TranCeiv(0, 0, 0, "x", 1, 7), bytes({251}));
  EXPECT_EQ(spent(), 1000ms);
}

TEST_F(FastMode, OversizedDataTravelAsTheyAre) {
  const Bytes data(100000, '\xFF');
  script.answer(bytes({'*', 2, 2, 0x40, 1, 2}) + data + "#", bytes({'*', 2, 2, 0x40, 1, 2, 0, '#'}));
  EXPECT_EQ(serial.WriteCom(1, 1, 2, "H", data, 1), bytes({0, '#'}));
}

class SerialLink : public ScriptedLink {};

TEST_F(SerialLink, SilentEchoCostsATenthOfASecondAnAttempt) {
  host.plugIn(1, [this] { return std::make_unique<ScriptedPeer>(script, false); });
  ASSERT_EQ(serial.OpenCom(), 0);
  EXPECT_EQ(spent(), 500ms);
  serial.FlgBreak = false;
  // The first byte of each frame is all that is ever sent.
  script.on("*").on("*").on("*");
  EXPECT_EQ(serial.ReadCom(1, 0, 0, "V"), bytes({254}));
  EXPECT_EQ(spent(), 800ms);
}

TEST_F(SerialLink, WrongEchoStopsTheFrame) {
  host.plugIn(1, [this] { return std::make_unique<ScriptedPeer>(script, false); });
  serial.OpenCom();
  serial.FlgBreak = false;
  script.answer("*", "*").answer(bytes({0x20}), bytes({0x21}));
  EXPECT_EQ(serial.ReadCom(1, 0, 0, "V", 1), bytes({254}));
}

TEST_F(SerialLink, FirstTransactionSendsABreak) {
  openSerial(true);
  serial.FlgBreak = true;
  const Bytes head = bytes({'*', 2, 2, 0x20, 0, 0});
  script.answer(head + "#", head + bytes({0, 1, '#'})).answer(head + "#", head + bytes({0, 1, '#'}));
  EXPECT_EQ(serial.ReadCom(1, 0, 0, "V"), bytes({0, 1}));
  EXPECT_EQ(spent(), 110ms);
  EXPECT_FALSE(serial.FlgBreak);
  serial.ReadCom(1, 0, 0, "V");
  EXPECT_EQ(script.breaks(), 1);
}

TEST_F(SerialLink, OpeningTwiceKeepsThePortAndTakesTheNewMode) {
  openSerial(false);
  serial.TCP = true;
  EXPECT_EQ(serial.OpenCom(1, 9600, true), 56);
  EXPECT_TRUE(serial.NoEcho);
  EXPECT_FALSE(serial.TCP);
  EXPECT_TRUE(host.port().isOpen());
  EXPECT_EQ(serial.OpenCom(1, -1), 100);
  EXPECT_EQ(serial.CloseCom(), 0);
  EXPECT_EQ(serial.CloseCom(), 84);
  EXPECT_EQ(serial.OpenCom(9), 100);
  EXPECT_EQ(serial.OpenCom(1, 0), 100);
}

TEST_F(SerialLink, ClosedPortRaisesItsErrorAndAnUnpluggedOneToo) {
  const auto error = [&] {
    try {
      serial.ReadCom(1, 0, 0, "V");
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  };
  EXPECT_EQ(error(), 8018);
  EXPECT_EQ(serial.Ctl_Param("R", 5, ""), 55);
  openSerial(true);
  host.unplug();
  EXPECT_EQ(error(), 8020);
  EXPECT_EQ(serial.Ctl_Param("R", 5, ""), 100);
  EXPECT_EQ(serial.CloseCom(), 0);
  host.onYield = [this] { host.unplug(); };
  EXPECT_EQ(serial.OpenCom(1), 100);
  EXPECT_EQ(serial.CloseCom(), 84) << "what fails while it opens is not open";
}

TEST_F(SerialLink, WaitsEndEarlyAtMidnight) {
  openSerial(true);
  host.setClock(std::chrono::hours(24) - 200ms);
  script.on(bytes({'*', 2, 2, 0x20, 0, 0, '#'}));
  EXPECT_EQ(serial.ReadCom(1, 0, 0, "V", 1), bytes({252}));
  EXPECT_GE(spent(), 200ms);
  EXPECT_LE(spent(), 210ms);
}

TEST_F(SerialLink, WaitsAreExactLateInTheDay) {
  openSerial(true);
  host.setClock(std::chrono::hours(23));
  script.on(bytes({'*', 2, 2, 0x20, 0, 0, '#'}));
  EXPECT_EQ(serial.ReadCom(1, 0, 0, "V", 1), bytes({252}));
  EXPECT_NEAR(static_cast<double>(spent().count()), 1000, 8);
}

/// In the evening the clock of seconds since midnight steps by 7.8 ms. A pause must not become shorter by
/// that.
TEST_F(SerialLink, PausesLastTheirTimeAtEveryHourAndEndAtMidnight) {
  openSerial(true);
  host.longestBlock = 1ms;
  const Bytes head = bytes({'*', 2, 2, 0x20, 0, 0});
  const auto timeOfBreak = [&](std::chrono::milliseconds clock) {
    host.setClock(clock);
    serial.FlgBreak = true;
    script.answer(head + "#", head + bytes({0, 1, '#'}));
    const auto before = spent();
    EXPECT_EQ(serial.ReadCom(1, 0, 0, "V", 1), bytes({0, 1}));
    return spent() - before;
  };
  for (int phase = 0; phase < 16; ++phase) {
    for (const auto hour : {0h, 9h, 20h}) {
      EXPECT_EQ(timeOfBreak(hour + 2s + std::chrono::milliseconds(phase)), 110ms) << hour.count() << phase;
    }
  }
  EXPECT_EQ(timeOfBreak(1001ms), 110ms);
  EXPECT_EQ(timeOfBreak(1000ms), 0ms) << "the clock reads 1.0";
  EXPECT_LE(timeOfBreak(24h - 5ms), 10ms);
}

TEST_F(SerialLink, MessagesAreDispatchedBetweenTheStepsOfATransactionOnly) {
  openSerial(true);
  const int before = host.yields();
  script.on(bytes({'*', 2, 2, 0x20, 0, 0, '#'}));
  serial.ReadCom(1, 0, 0, "V", 1);
  EXPECT_EQ(host.yields() - before, 3) << "an attempt without a reply is followed by the next at once";
  script.answer(bytes({'*', 2, 2, 0x20, 0, 0, '#'}), bytes({'*', 2, 2, 0x20, 0, 0, 9, 1, '#'}));
  serial.ReadCom(1, 0, 0, "V", 1);
  EXPECT_EQ(host.yields() - before, 3 + 4);
}

TEST_F(EchoMode, MessagesAreDispatchedAroundEachByteAndTheReply) {
  const int before = host.yields();
  script.on(bytes({'*', 0x20, 0, 0}));
  serial.ReadCom(1, 0, 0, "V", 1);
  EXPECT_EQ(host.yields() - before, 1 + 4 * 2 + 2 + 1);
}

}  // namespace
}  // namespace velk::test
