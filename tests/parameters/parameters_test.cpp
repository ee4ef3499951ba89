#include "parameters/layouts.h"
#include "support/watched_house.h"

namespace velk::test {
namespace {

class CtlParam : public WatchedHouse {
 protected:
  /// The result, then mode, items and count as they come back: "0 AU [14 15 16 17] 4".
  std::string read(Byte address, int count = 255, Byte offset = 0) {
    std::string mode = "??", items = "old";
    auto number = static_cast<std::int16_t>(count);
    result = serial.Ctl_Param("R", address, mode, items, number, offset);
    return answer(result, mode, items, number);
  }

  static std::string answer(int result, const std::string& mode, const Bytes& items, int count) {
    return std::to_string(result) + " " + mode + " [" + hex(items) + "] " + std::to_string(count);
  }

  Byte write(Byte address, const std::string& mode, const Bytes& items, int count = 255, Byte offset = 0) {
    return serial.Ctl_Param("W", address, mode, items, static_cast<std::int16_t>(count), offset);
  }

  /// Output 50: every byte that a mode may use holds its own page offset, but for 0x95 at 16 and 0x5B at 18;
  /// its block holds the letters from d on. Its marker says that it is a roller, or 6.
  void plant(int number, bool roller = false) {
    Bytes page;
    for (int offset = 0; offset < 60; ++offset) page += character(offset);
    setMemory(50, 0, page.replace(16, 1, "\x95").replace(18, 1, "\x5B").replace(1, 1, 1, character(number)));
    setMemory(0x10, 255 - 50, bytes({roller ? 50 : 6}));
    setMemory(32, 250, "defghijklmnopqrs", link::Area::block);
  }

  Byte result = 0;
};

/// What the modes of one layout read from the planted output between its mode byte and the further byte at
/// 56, and behind that; and what they send for a write between reading the mode and storing it.
struct Row {
  const char* modes;
  int lastOffset;
  const char *block, *own;
  Bytes items, written;
  std::string writes;
};

const std::string writesDimmer =
    "; read  1 V 3210; read  1 V 3238; write 7 V 3210 96 A0 A5 A1 A3 A2 A4; write 1 V 3238 C8";

// Written are 0xA0 and up into whole bytes. The low bits of 16 tell the flags apart together: read 1 0 1 0,
// written 1 1 0 0 for the bits 0 to 3; its other bits stay.
const Row rows[] = {
    {"1 BI 14 IN", 15, "read  11 V 3210; ", "",
     bytes({17, 11, 5, 19, 20, 'M', 21, 22, 'S', 23, 24, 'M', 25, 26, 'S', 3}),
     bytes({0xA0, 15, 10, 0xA1, 0xA2, 'M', 0xA3, 0xA4, 'M', 0xA5, 0xA6, 'S', 0xA7, 0xA8, 'S', 12}),
     "; read  1 V 3210; read  1 V 3238; write 11 V 3210 93 A0 AF A1 A2 A3 A4 A5 A6 A7 A8; write 1 V 3238 C8"},
    {"2 PB 13 SS", 3, "read  3 V 3210; ", "", bytes({17, 11, 5, 3}), bytes({0xA0, 5, 15, 12}),
     "; read  1 V 3238; write 2 V 3211 A0 F5; write 1 V 3238 C8"},
    {"3 DI", 10, "read  7 V 3210; ", "", bytes({17, 11, 5, '1', 19, 21, 'M', 20, 22, 'S', 3}),
     bytes({0xA0, 5, 10, '1', 0xA1, 0xA2, 'S', 0xA3, 0xA4, 'M', 12}), writesDimmer},
    {"4 DI", 10, "read  1 V 10CD; read  7 V 3210; ", "", bytes({17, 11, 5, '2', 19, 21, 'M', 20, 22, 'S', 3}),
     bytes({0xA0, 5, 10, '2', 0xA1, 0xA2, 'S', 0xA3, 0xA4, 'M', 12}), writesDimmer + "; read  1 V 10CD"},
    {"4 RO", 10, "read  1 V 10CD; read  11 V 3210; ", "",
     bytes({17, 11, 5, '2', 19, 21, 'M', 20, 22, 'S', 3}),
     bytes({0xA0, 5, 10, '2', 0xA1, 0xA2, 'S', 0xA3, 0xA4, 'M', 12}), writesDimmer + "; write 1 V 10CD 32"},
    {"5 T1 6 T2 7 T3 8 T4 21 T5", 11, "read  7 V 3210; ", "",
     bytes({17, 11, 5, 19, 'M', 20, 'S', 21, 'M', 22, 'S', 3}),
     bytes({0xA0, 5, 10, 0xA1, 'M', 0xA2, 'M', 0xA3, 'S', 0xA4, 'S', 12}),
     "; read  1 V 3210; read  1 V 3238; write 7 V 3210 93 A0 A5 A1 A2 A3 A4; write 1 V 3238 C8"},
    {"9 UD", 16, "read  11 V 3210; ", "",
     bytes({17, 11, 5, '1', 19, 20, 25, 'M', 23, 'M', 21, 22, 26, 'S', 24, 'S', 3}),
     bytes({0xA0, 5, 10, '2', 0xA1, 0xA2, 0xA3, 'M', 0xA4, 'S', 0xA5, 0xA6, 0xA7, 'M', 0xA8, 'S', 12}),
     "; read  1 V 3210; read  1 V 3238; write 11 V 3210 13 A0 A5 A1 A2 A5 A6 A4 A8 A3 A7; write 1 V 3238 C8"},
    {"10 LC", 0, "read  1 V 3211; ", "", "O", "I", "; read  1 V 3211; write 1 V 3211 00"},
    {"11 RC", 255, "", "; read  12 V 3213", bytes({19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30}),
     "ABCDEFGHIJKL", "; write 12 V 3213 41 42 43 44 45 46 47 48 49 4A 4B 4C"},
    {"12 RS", 0, "", "", "", "", ""},
    {"15 TH", 14, "read  11 V 3212; ", "; read  2 V 320B",
     bytes({11, 5, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 11, 12, 3}),
     "\x05\x0A"
     "ABCDEFGHIJKL\x0C",
     "; read  1 V 3238; write 2 V 320B 4B 4C; write 11 V 3212 A5 41 42 43 44 45 46 47 48 49 4A; "
     "write 1 V 3238 C8"},
    {"16 ML", 0, "", "; read  16 H 20FA", "defghijklmnopqrs\x03", "ABCDEFGHIJKLMNOP\x0C",
     "; read  1 V 3238; write 1 V 3238 C8; write 16 H 20FA 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50"},
    {"17 LO", 0, "", "; read  16 H 20FA", "defghijklmnopqrs", "ABCDEFGHIJKLMNOP",
     "; write 16 H 20FA 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50"},
    {"18 PS", 8, "read  1 V 3211; ", "; read  8 V 3204", bytes({17, 4, 5, 6, 7, 8, 9, 10, 11}), "ABCDEFGHI",
     "; write 8 V 3204 42 43 44 45 46 47 48 49; write 1 V 3211 41"},
    {"19 AL", 255, "", "", "", "", ""},
    {"20 AU", 3, "", "; read  4 V 3214", bytes({20, 21, 22, 23}), "ABCD", "; write 4 V 3214 41 42 43 44"},
};

/// Calls check(row, number, code) for each mode.
template <class Check>
void forEachMode(Check check) {
  for (const Row& row : rows) {
    std::istringstream modes(row.modes);
    int number = 0;
    for (std::string code; modes >> number >> code;) {
      SCOPED_TRACE(code + " stored as " + std::to_string(number));
      check(row, number, code);
    }
  }
}

TEST_F(CtlParam, EveryModeReadsAndWritesItsPlaces) {
  forEachMode([&](const Row& row, int number, const std::string& code) {
    plant(number, code == "RO");
    EXPECT_EQ(read(50), answer(0, code, row.items, code == "AL" ? 255 : static_cast<int>(row.items.size())));
    const std::string mode = " 1 V 3201";
    EXPECT_EQ(sent(), "read " + mode + "; " + row.block + "read  1 V 3238" + row.own);
    plant(0);
    EXPECT_EQ(outcome(write(50, code, row.written)),
              "0: read " + mode + row.writes + "; write" + mode + " " + hex(bytes({number})));
    expectEndAtEveryRefusal([&] { return plant(0), write(50, code, row.written); });
    if (number == 4) return;  // a marker that cannot be read says dimmer
    EXPECT_EQ(parameters::layouts()[static_cast<std::size_t>(number - 1)].code, code);
    expectEndAtEveryRefusal([&] { return plant(number), read(50), result; });
  });
}

TEST_F(CtlParam, EachItemIsWrittenAlone) {
  forEachMode([&](const Row& row, int number, const std::string& code) {
    for (Byte k = 0; k < row.items.size(); ++k) {
      const bool fits = code == "RC" ? k % 2 == 0 : k <= row.lastOffset;
      plant(number, code == "RO");
      EXPECT_EQ(write(50, code, row.written.substr(k, 1), 1, k), fits ? 0 : 103);
      Bytes changed = row.items;
      if (fits) changed[k] = row.written[k];
      EXPECT_EQ(read(50), answer(0, code, changed, static_cast<int>(changed.size()))) << "item " << int{k};
    }
  });
}

TEST_F(CtlParam, BoundsOfOffsetAndCount) {
  const auto resultOf = [&](int count, Byte offset) { return read(50, count, offset), result; };
  forEachMode([&](const Row& row, int number, const std::string& code) {
    plant(number, code == "RO");
    for (int offset = 0; offset < 256; ++offset) {
      const bool fits = code == "RC" ? offset % 2 == 0 : offset <= row.lastOffset;
      EXPECT_EQ(resultOf(255, static_cast<Byte>(offset)), fits ? 0 : 103) << offset;
    }
    if (code == "AL") return;
    const auto n = static_cast<int>(row.items.size());
    EXPECT_EQ(resultOf(n, 0), 0);
    for (const int count : {n + 1, 254, 256, 32767}) EXPECT_EQ(resultOf(count, 0), 102) << count;
    if (row.lastOffset == 0 || code == "RC") return;
    const auto last = static_cast<Byte>(row.lastOffset);
    EXPECT_EQ(read(50, 1, last), answer(0, code, row.items.substr(last), 1));
    EXPECT_EQ(resultOf(2, last), code == "AU" ? 0 : 102);
  });
  plant(11);
  EXPECT_EQ(read(50, 2, 10), "0 RC [1D 1E] 2");
  EXPECT_EQ(resultOf(3, 10), 102);
  EXPECT_EQ(read(50, 255, 254), "0 RC [] 0");
  plant(20);
  EXPECT_EQ(read(50, 255, 2), "0 AU [16 17] 4") << "AU reports all four items";
}

TEST_F(CtlParam, OutputsOwnSixteenBytesOfTheBlockArea) {
  for (const Byte output : List{15, 16, 99}) EXPECT_EQ(write(output, "LO", Bytes(16, 'x')), 0);
  EXPECT_EQ(requests.at(1).substr(0, 15), "write 16 H F0F7");
  EXPECT_EQ(requests.at(4).substr(0, 15), "write 16 H 00F8");
  EXPECT_EQ(requests.at(7).substr(0, 15), "write 16 H 30FD");
}

TEST_F(CtlParam, ArgumentsAreCheckedInOrder) {
  const std::tuple<const char*, Byte, const char*, int> table[] = {
      {"X", 0, "", 112},  {"X", 100, "", 112}, {"X", 99, "", 101},   {"r", 5, "", 101},
      {"", 5, "??", 111}, {"W", 5, "", 111},   {"RW", 1, "BI", 111}, {"W", 2, "RC", 111}};
  for (const auto& [direction, address, mode, code] : table)
    EXPECT_EQ(outcome(serial.Ctl_Param(direction, address, mode)), std::to_string(code) + ": ") << direction;
  EXPECT_EQ(outcome(read(99)), "111  [] 255: read  1 V 6301; read  1 V 6338") << "no mode is stored";
}

TEST_F(CtlParam, ModeAlone) {
  EXPECT_EQ(read(5, 0), "0 T1 [6F 6C 64] 0");
  EXPECT_EQ(read(5, -3), "0 T1 [6F 6C 64] -3");
  EXPECT_EQ(read(99, 0), "0  [6F 6C 64] 0");
  EXPECT_EQ(sent(), "read  1 V 0501; read  1 V 0501; read  1 V 6301");
  EXPECT_EQ(write(5, "RS", "ignored", 0) + write(2, "RS", "", 0) + write(1, "RC", "", 0), 0);
  EXPECT_EQ(write(5, "I", "", 0), 0) << "a part of a code counts as the nearest one";
  EXPECT_EQ(sent(),
            "read  1 V 0501; write 1 V 0501 0C; read  1 V 0201; write 1 V 0201 0C; "
            "read  1 V 0101; write 1 V 0101 0B; read  1 V 0501; write 1 V 0501 01");
  EXPECT_EQ(write(5, "I", "", 1), 99) << "but it has no items";
  plant(16);
  requests.clear();
  EXPECT_EQ(outcome(read(50, 0)), "0 ML [] 0: read  1 V 3201; read  1 V 3238; read  16 H 20FA")
      << "ML alone goes through its items, even none";
  EXPECT_EQ(outcome(write(50, "ML", "x", 0)), "104: read  1 V 3201");
  EXPECT_EQ(outcome(write(50, "ML", "", 0)), "0: read  1 V 3201; write 1 V 3201 10");
}

TEST_F(CtlParam, WrongItemsAreRefusedBeforeTheFirstByte) {
  plant(1);
  const auto before = controller.snapshot();
  for (const Bytes& items : {rows[0].items.substr(1), rows[0].items + "x", Bytes(100000, 'M')})
    EXPECT_EQ(write(50, "BI", items), 104);
  EXPECT_EQ(write(50, "BI", "", -5), 104);
  EXPECT_EQ(write(50, "BI", "x", 1, 16), 103);
  EXPECT_EQ(write(50, "BI", "x", 17, 0), 102);
  const std::tuple<const char*, Byte, const char*> wrong[] = {
      {"BI", 1, "\x10"},  {"BI", 2, "\x10"}, {"BI", 5, "m"}, {"BI", 5, "X"},
      {"BI", 15, "\x10"}, {"DI", 3, "3"},    {"RO", 3, "1"}, {"LC", 0, "1"}};
  for (const auto& [mode, item, value] : wrong)
    EXPECT_EQ(write(50, mode, value, 1, item), 105) << mode << value;
  EXPECT_EQ(controller.snapshot(), before);
}

TEST_F(CtlParam, ALightControlKeepsTheByteThatReadsTheSame) {
  const Byte table[][3] = {{0, 'O', 1}, {1, 'O', 1}, {77, 'O', 77}, {77, 'I', 0}};
  for (const auto& [before, item, after] : table) {
    setMemory(50, 17, Bytes(1, character(before)));
    EXPECT_EQ(write(50, "LC", Bytes(1, character(item))), 0);
    EXPECT_EQ(memoryAt(50, 17, 1), Bytes(1, character(after))) << int{before} << " " << item;
    EXPECT_EQ(read(50), std::string("0 LC [") + (item == 'O' ? "4F" : "49") + "] 1");
  }
}

TEST_F(CtlParam, DimmersAndRollersShareANumber) {
  // A mode, one item and what it is to be; then what is stored as mode and marker.
  const std::tuple<const char*, Byte, const char*, const char*> steps[] = {
      {"DI", 3, "2", "04 06"},  // a marker of another value says dimmer already
      {"RO", 3, "2", "04 32"},
      {"DI", 6, "M", "04 00"},  // without item 3 the number that fits stays, and the marker goes
      {"DI", 3, "1", "03 00"},
      {"RO", 6, "M", "04 32"},
      {"PB", 0, "x", "02 32"},  // other modes leave the marker
      {"DI", 6, "M", "03 32"},  // any other number gives way to the code's own
  };
  plant(5);
  for (const auto& [mode, item, value, stored] : steps) {
    EXPECT_EQ(write(50, mode, value, 1, item), 0) << mode;
    EXPECT_EQ(hex(memoryAt(50, 1, 1) + memoryAt(0x10, 0xCD, 1)), stored) << mode << " " << value;
  }
}

TEST_F(CtlParam, AFailedReadKeepsWhatItHas) {
  for (const auto& [fault, answer] :
       std::map<std::string, std::string>{{"status=7@1", "7 ?? [6F 6C 64] 255"},
                                          {"status=7@2", "7 T1 [] 255"},
                                          {"short=12@1", "100 ?? [6F 6C 64] 255"},
                                          {"short=16@2", "100 T1 [05 01 03] 12"}}) {
    openWith(fault);
    EXPECT_EQ(read(5), answer) << fault;
  }
}

class CtlIrText : public WatchedHouse {};

TEST_F(CtlIrText, GoesToItsBlock) {
  EXPECT_EQ(serial.Ctl_IRText("R", 64, "x"), 99);
  EXPECT_EQ(serial.Ctl_IRText("r", 0, "x"), 101);
  EXPECT_EQ(serial.Ctl_IRText("W", 64, "x"), 103);
  EXPECT_EQ(serial.Ctl_IRText("W", 255, "x"), 103);
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(outcome(serial.Ctl_IRText("W", 63, "abcdefghijklmnopqrst")),
            "0: write 16 H+ F00D 61 62 63 64 65 66 67 68 69 6A 6B 6C 6D 6E 6F 70");
  EXPECT_EQ(outcome(serial.Ctl_IRText("", 16, "abc")),
            "0: write 16 H+ 000B 61 62 63 20 20 20 20 20 20 20 20 20 20 20 20 20");
  EXPECT_EQ(outcome(serial.Ctl_IRText("RW", 15, "")).substr(0, 22), "0: write 16 H+ F00A 20");
  expectEndAtEveryRefusal([&] { return serial.Ctl_IRText("W", 0, "x"); });
}

}  // namespace
}  // namespace velk::test
