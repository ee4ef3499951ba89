#include "support/watched_house.h"

namespace velk::test {
namespace {

class Modes : public WatchedHouse {};

TEST_F(Modes, NumbersHaveCodes) {
  std::string codes;
  for (int number = 0; number <= 255; ++number) {
    const std::string code = serial.ModeToStr(static_cast<Byte>(number), 5);
    codes += code + (number < 23 ? "|" : "");
    EXPECT_EQ(serial.ModeToNr(code), code.empty() ? 0 : number == 4 ? 3 : number) << code;
  }
  EXPECT_EQ(codes, "|BI|PB|DI|DI|T1|T2|T3|T4|UD|LC|RC|RS|SS|IN|TH|ML|LO|PS|AL|AU|T5||") << "above 21: none";
}

TEST_F(Modes, NumberFourAsksForTheMarker) {
  for (const auto& [marker, code] : std::map<int, std::string>{{6, "DI"}, {7, "RO"}, {8, "DI"}}) {
    setMemory(0x10, 0xF8, bytes({marker}));
    EXPECT_EQ(outcome(serial.ModeToStr(4, 7)), code + ": read  1 V 10F8") << marker;
  }
  openWith("status=7@1");
  EXPECT_EQ(serial.ModeToStr(4, 0), "DI") << "the zero bytes of a refusal are no marker of output 0";
  openWith("short=13@1");
  EXPECT_EQ(serial.ModeToStr(4, 7), "DI") << "a status without the marker";
  openWith("short=12@1");
  EXPECT_EQ(errorOf([&] { serial.ModeToStr(4, 7); }), 5) << "an empty reply";
}

TEST_F(Modes, AnyPartOfTheListHasANumber) {
  const std::vector<std::pair<std::string, int>> table{{"RO", 4}, {"bi", 0},    {"ro", 0}, {"BIPB", 0},
                                                       {"|", 0},  {"I", 1},     {"I|", 1}, {"|P", 2},
                                                       {"O", 4},  {"BI|PB", 1}, {"5", 21}, {"5|", 0}};
  for (const auto& [text, number] : table) EXPECT_EQ(serial.ModeToNr(text), number) << text;
}

class CtlInit : public WatchedHouse {
 protected:
  void SetUp() override {
    WatchedHouse::SetUp();
    setMemory(0, 2, bytes({77, 3, 20, 110, 9, 9, 20}));
    setMemory(2, 8, bytes({1, 2, 3}));
    setMemory(255, 247, bytes({0x11, 0x12, 0x59, 0x58, 0x23, 0x03, 0x28, 0x02, 0x24}));
  }

  Byte read(Byte count, Byte offset) { return serial.Ctl_Init("R", block, count, offset); }
  Byte write(const Bytes& positions, Byte offset) {
    return serial.Ctl_Init("W", positions, static_cast<Byte>(positions.size()), offset);
  }

  Bytes block = "old";
  const Bytes clock = bytes({24, 2, 29, 3, 23, 58, 59});
};

TEST_F(CtlInit, ReadsWhatTheRangeNames) {
  const std::tuple<Byte, Byte, Bytes, const char*> rows[] = {
      {13, 0, bytes({20, 110, 9, 9, 20, 77, 24, 2, 28, 3, 23, 58, 59, 1, 2, 3}),
       "0: read  7 V 0002; read  7 V FFF9; read  3 V 0208"},
      {4, 1, bytes({110, 9, 9, 20}), "0: read  7 V 0002"},
      {1, 5, bytes({77}), "0: read  7 V 0002"},
      {3, 5, bytes({77, 24, 2}), "0: read  7 V 0002; read  2 V FFFE"},
      {1, 6, bytes({24}), "0: read  1 V FFFF"},
      {6, 6, bytes({24, 2, 28, 3, 23, 58}), "0: read  6 V FFFA"},
      {1, 12, bytes({59, 1, 2, 3}), "0: read  1 V FFF9; read  3 V 0208"},
      {0, 2, "", "0: read  7 V 0002"},
      {1, 13, bytes({1, 2, 3}), "0: read  3 V 0208"},
      // A range that ends behind the clock takes the hold bytes for clock values.
      {9, 6, bytes({24, 2, 28, 3, 23, 58, 59, 12, 11, 1, 2, 3}), "0: read  9 V FFF7; read  3 V 0208"}};
  for (const auto& [count, offset, expected, requested] : rows) {
    EXPECT_EQ(outcome(read(count, offset)), requested) << int{count} << " positions behind " << int{offset};
    EXPECT_EQ(hex(block), hex(expected)) << int{count} << " positions behind " << int{offset};
  }
  EXPECT_EQ(outcome(read(0, 6)), "99: ");
  read(0, 9);
  EXPECT_EQ(sent(), "read  16 V FFFD") << "a count of 0 on the wire";
  expectEndAtEveryRefusal([&] { return read(13, 0); });
}

TEST_F(CtlInit, KindIsDerived) {
  const int kinds[][3] = {{0, 5, 0}, {1, 0, 2}, {8, 255, 2}, {9, 13, 2}, {9, 14, 77}, {10, 0, 77}};
  for (const auto& [a, b, kind] : kinds) {
    setMemory(0, 7, bytes({a, b}));
    EXPECT_EQ((read(1, 5), block), bytes({kind})) << a << " " << b;
  }
}

TEST_F(CtlInit, ArgumentsInOrder) {
  EXPECT_EQ(serial.Ctl_Init("r", "", 255, 255), 101);
  EXPECT_EQ(read(255, 14), 103);
  EXPECT_EQ(read(13, 4), 102);
  EXPECT_EQ(read(255, 13), 102);
  EXPECT_EQ(serial.Ctl_Init("W", "x", 2, 0), 104);
  EXPECT_EQ(serial.Ctl_Init("", Bytes(70000, 'x'), 3, 0), 104);
  const Byte cutTheClock[][2] = {{7, 0}, {12, 0}, {1, 6}, {5, 8}, {6, 8}, {3, 13}};
  for (const auto& [count, offset] : cutTheClock)
    EXPECT_EQ(write(Bytes(count, '\x05'), offset), 104) << int{count} << " " << int{offset};
  EXPECT_EQ(sent(), "");
}

TEST_F(CtlInit, EveryPositionHasItsRange) {
  const Bytes lowest = bytes({10, 104, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0});
  const Bytes highest = bytes({99, 128, 255, 255, 255, 255, 99, 12, 31, 7, 23, 59, 59});
  for (const auto position : {1U, 2U, 7U, 8U, 9U, 10U, 11U, 12U, 13U}) {
    Bytes low = lowest, high = highest;
    EXPECT_EQ((--low[position - 1], write(low, 0)), 105) << "position " << position << " below its range";
    EXPECT_EQ((++high[position - 1], write(high, 0)), 105) << "position " << position << " above its range";
  }
  EXPECT_EQ(sent(), "") << "a wrong byte is found before the first write";
  EXPECT_EQ(write(lowest, 0) + write(highest, 0), 0);
}

TEST_F(CtlInit, EveryMonthHasItsLastDay) {
  const int lastDays[][3] = {{23, 1, 31}, {23, 2, 28}, {23, 3, 31}, {23, 4, 30},  {23, 5, 31},  {23, 6, 30},
                             {23, 7, 31}, {23, 8, 31}, {23, 9, 30}, {23, 10, 31}, {23, 11, 30}, {23, 12, 31},
                             {24, 2, 29}, {28, 2, 29}, {0, 2, 29},  {22, 2, 28}};
  for (const auto& [year, month, day] : lastDays) {
    EXPECT_EQ(write(bytes({year, month, day, 0, 0, 0, 0}), 6), 0) << year << "-" << month << "-" << day;
    EXPECT_EQ(write(bytes({year, month, day + 1, 0, 0, 0, 0}), 6), 105) << year << "-" << month;
  }
  for (const int month : {0, 13, 255}) EXPECT_EQ(write(bytes({24, month, 1, 0, 0, 0, 0}), 6), 105) << month;
}

TEST_F(CtlInit, SettingTheClockHoldsIt) {
  const Bytes all = bytes({99, 128, 255, 1, 2, 3}) + clock;
  EXPECT_EQ(outcome(write(all, 0)),
            "0: write 3 V 0004 63 80 FF; write 1 V FFF7 FF; write 1 V FFF8 FF; "
            "write 7 V FFF9 59 58 23 03 29 02 24; write 1 V FFF8 00; write 1 V FFF7 00");
  EXPECT_EQ(outcome(write(bytes({10, 104, 7, 1, 2, 3}), 0)), "0: write 3 V 0004 0A 68 07");
  EXPECT_EQ(outcome(write(bytes({7, 1, 2, 3}), 2)), "0: write 1 V 0006 07");
  EXPECT_EQ(write(bytes({1, 2, 3}), 3), 99) << "positions 4 to 6 are never written";
  EXPECT_EQ(write("", 0), 99);
  EXPECT_EQ(write(clock + bytes({1, 2, 3}), 6), 0);
  EXPECT_EQ(requests.at(2), "write 7 V FFF9 03 02 01 59 58 23 03") << "the last seven of any range";
  expectEndAtEveryRefusal([&] { return write(all, 0); });
}

TEST_F(CtlInit, RunTimeErrors) {
  EXPECT_EQ(outcome(write(bytes({2, 1, 1, 1, 1, 1}), 7)), "100: ") << "February asks for a year";
  EXPECT_EQ(outcome(write(bytes({3, 1, 1, 1, 1, 1}), 7)), "100: write 1 V FFF7 FF; write 1 V FFF8 FF")
      << "six characters are no clock, and it stays held";
  EXPECT_EQ(write(clock + bytes({160}), 6), 100) << "no BCD";
  setMemory(255, 250, bytes({0x5A}));
  EXPECT_EQ(read(13, 0), 100);
  EXPECT_EQ(block, bytes({20, 110, 9, 9, 20, 77})) << "what was read before stays";
  openWith("short=18@1");
  EXPECT_EQ(read(2, 0), 100) << "too short for the kind, which nobody asks for";
}

class CtlSoft : public WatchedHouse {
 protected:
  /// The result, then the link as it comes back: "0: O 5 3 10 rising".
  std::string read(Byte sub) {
    Byte destination = 9, p1 = 9, p2 = 9;
    std::string kind = "?";
    bool high = true, low = true;
    result = serial.Ctl_Soft("R", 30, sub, destination, kind, p1, p2, high, low);
    return std::to_string(result) + ": " + kind + " " + std::to_string(destination) + " " +
           std::to_string(p1) + " " + std::to_string(p2) + (high ? " rising" : "") + (low ? " falling" : "");
  }

  Byte result = 0;
};

TEST_F(CtlSoft, ReadsOutputAndInputLinks) {
  const struct {
    Byte sub;
    Bytes record, flanks;
    const char* outcome;
  } rows[] = {{2, "\x85\xF5", "\xFB", "0: O 5 15 5 rising: read  2 V 1E23; read  1 V 1EFE"},
              {2, "\xFF\x3A", "\xBF", "0: O 127 3 10 falling: read  2 V 1E23; read  1 V 1EFE"},
              {3, {"\x80\x00", 2}, "\x77", "0: O 0 0 0: read  2 V 1E25; read  1 V 1EFE"},
              {0, "\x81\x0F", "\x11", "0: O 1 0 15 rising falling: read  2 V 1E1F; read  1 V 1EFE"},
              {0, "\x7F\x77", "\x22", "0: I 0 0 0 rising falling: read  2 V 1E1F"}};
  for (const auto& row : rows) {
    setMemory(30, 31 + 2 * row.sub, row.record);
    setMemory(30, 254, row.flanks);
    EXPECT_EQ(outcome(read(row.sub)), row.outcome);
    expectEndAtEveryRefusal([&] { return read(row.sub), result; });
  }
  openWith("short=14@1");
  EXPECT_EQ(read(2), "100: O 127 9 9 rising falling") << "a record cut in two leaves its first half";
}

TEST_F(CtlSoft, ChecksInOrder) {
  EXPECT_EQ(serial.Ctl_Soft("w", 1, 9, 1, "?", 0), 101);
  for (const Byte source : List{1, 2, 100, 125, 255})
    EXPECT_EQ(serial.Ctl_Soft("W", source, 9, 1, "?", 0), 112);
  for (const Byte source : List{0, 3, 99, 101, 124})
    EXPECT_EQ(serial.Ctl_Soft("W", source, 4, 1, "?", 0), 115);
  EXPECT_EQ(serial.Ctl_Soft("W", 0, 3, 1, "OI", 0), 116);
  EXPECT_EQ(serial.Ctl_Soft("W", 5, 1, 5, "O", 2), 112) << "a link to itself";
  EXPECT_EQ(serial.Ctl_Soft("W", 40, 0, 128, "O", 0), 100) << "128 + 128 is no byte";
  EXPECT_EQ(serial.Ctl_Soft("W", 40, 0, 129, "O", 64, 1), 100);
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(serial.Ctl_Soft("W", 5, 1, 5, "O", 0xFD), 0) << "to itself, without the bit of the sub-address";
  EXPECT_EQ(serial.Ctl_Soft("W", 5, 1, 5, "I", 2), 0);
}

TEST_F(CtlSoft, WritesRecordAndFlanks) {
  const struct {
    Byte destination;
    const char* kind;
    Byte parameters1, parameters2;
    bool high, low;
    std::string record, flanks;  // the flanks over 0xA5
  } rows[] = {
      {1, "O", 0x1D, 0x27, true, true, "81 D7", "E5"}, {127, "O", 1, 2, true, false, "FF 12", "E1"},
      {129, "O", 3, 0, false, true, "81 83", "A5"},    {255, "", 63, 9, false, false, "FF FF", "A1"},
      {200, "IO", 127, 0, true, true, "C8 FF", "E5"},  {200, "O", 0, 1, true, true, "C8 C0", "E5"},
  };
  for (const auto& row : rows) {
    setMemory(40, 254, "\xA5");
    const auto write = [&] {
      return serial.Ctl_Soft("W", 40, 2, row.destination, row.kind, row.parameters1, row.parameters2,
                             row.high, row.low);
    };
    EXPECT_EQ(outcome(write()),
              "0: write 2 V 2823 " + row.record + "; read  1 V 28FE; write 1 V 28FE " + row.flanks);
    expectEndAtEveryRefusal(write);
  }
  EXPECT_EQ(outcome(serial.Ctl_Soft("W", 40, 3, 0, "O", 5, 5)), "0: write 2 V 2825 00 00");
  EXPECT_EQ(outcome(serial.Ctl_Soft("W", 40, 0, 100, "I", 5, 5)), "0: write 2 V 281F 64 00");
  // from 101 on an input has parameters
  EXPECT_EQ(outcome(serial.Ctl_Soft("W", 40, 0, 101, "I", 5, 0xF5)), "0: write 2 V 281F 65 05");
  expectEndAtEveryRefusal([&] { return serial.Ctl_Soft("W", 40, 3, 0, "O", 5); });
  expectEndAtEveryRefusal([&] { return serial.Ctl_Soft("W", 40, 0, 101, "I", 5); });
}

class CtlLang : public WatchedHouse {};

TEST_F(CtlLang, WritesAllTextsThenReadsThem) {
  std::uint64_t checksum = 14695981039346656037U;  // FNV-1a
  for (const std::string language : {"N", "E", "F", "D", "B", "P", "S"}) {
    requests.clear();
    EXPECT_EQ(serial.Ctl_Lang(language), Value(std::int16_t{0})) << language;
    for (int slot = 6; slot <= 34; ++slot)
      for (const char c : memoryAt(slot, 40, 16)) checksum = (checksum ^ byteValue(c)) * 1099511628211U;
  }
  ASSERT_EQ(requests.size(), 2 * 29U) << "all texts are written, then all are read";
  EXPECT_EQ(requests[0], "write 16 V 0628 45 4E 43 45 41 50 41 47 41 42 41 4A 41 52 52 49");
  EXPECT_EQ(requests[28], "write 16 V 2228 45 4E 56 49 41 4E 44 4F 20 43 4F 44 2E 49 52 20");
  EXPECT_EQ(requests[29] + "; " + requests[57], "read  16 V 0628; read  16 V 2228");
  EXPECT_EQ(checksum, 17875364661575431636U) << "one of the 203 texts is not what displays have always shown";
}

TEST_F(CtlLang, FailuresKeepTheirKinds) {
  for (const char* language : {"n", "NL", "", "NE"})
    EXPECT_EQ(serial.Ctl_Lang(language), Value(std::int16_t{105})) << language;
  EXPECT_EQ(sent(), "");
  expectEndAtEveryRefusal([&] { return std::get<std::int16_t>(serial.Ctl_Lang("E")); });
  openWith("short=20@58");
  EXPECT_EQ(serial.Ctl_Lang("E"), Value(std::int16_t{201})) << "a text that reads back short";
  openWith("short=12@30");
  EXPECT_EQ(serial.Ctl_Lang("E"), Value(Byte{100})) << "a run-time error, whose code is a byte";
}

}  // namespace
}  // namespace velk::test
