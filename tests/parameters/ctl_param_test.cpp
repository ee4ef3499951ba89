#include "parameters/layouts.h"
#include "support/simulated_house.h"

namespace velk::test {
namespace {

using parameters::Layout;

class CtlParam : public SimulatedHouse {
 protected:
  void SetUp() override { open(LinkKind::ethernetQ); }

  struct Output {
    int result = 0;
    std::string mode;
    Bytes parameters;
    std::int16_t count = 0;
    friend bool operator==(const Output&, const Output&) = default;
    friend void PrintTo(const Output& o, std::ostream* out) {
      *out << o.result << " " << o.mode << " " << testing::PrintToString(o.parameters) << " " << o.count;
    }
  };

  Output read(Byte address, std::int16_t count = 255, Byte offset = 0) {
    Output o{.mode = "??", .parameters = "old", .count = count};
    o.result = serial.Ctl_Param("R", address, o.mode, o.parameters, o.count, offset);
    return o;
  }

  Byte write(Byte address, const std::string& mode, const Bytes& items, std::int16_t count = 255,
             Byte offset = 0) {
    return serial.Ctl_Param("W", address, mode, items, count, offset);
  }

  /// Makes output 50 one of mode `number` with a pattern in every byte that a mode may use.
  void plant(Byte number, bool marked = false) {
    Bytes pattern;
    for (int i = 0; i < 60; ++i) pattern += character(i * 7 + 3);
    setMemory(50, 2, pattern);
    setMemory(50, 1, bytes({number}));
    setMemory(0x10, 255 - 50, bytes({marked ? 50 : 6}));
    const auto block = parameters::blockOf(50);
    setMemory(block.dph, block.dpl, pattern.substr(0, 16), simulator::Memory::block);
    requests.clear();
  }
};

using Requests = std::vector<std::string>;

TEST_F(CtlParam, ReadsOutput5OverEveryLink) {
  for (const LinkKind kind : allLinks) {
    open(kind);
    const Bytes items = bytes({5, 1, 3, 30, 'M', 2, 'M', 60, 'S', 4, 'S', 3});
    EXPECT_EQ(read(5), (Output{0, "T1", items, 12})) << nameOf(kind);
    EXPECT_EQ(requests, (Requests{"read  1 V 0501", "read  7 V 0510", "read  1 V 0538"})) << nameOf(kind);
  }
}

TEST_F(CtlParam, EveryLayoutReadsItsBytes) {
  // The bytes at 16 to 26 are 1 to 11 with flags in the first; the further byte is 0xC5.
  const Bytes block = bytes({0x85, 2, 0x43, 4, 5, 6, 7, 8, 9, 10, 11});
  const struct {
    int number;
    bool marked;
    const char* code;
    Bytes items;
  } rows[] = {
      {1, false, "BI", bytes({2, 3, 4, 4, 5, 'M', 6, 7, 'S', 8, 9, 'M', 10, 11, 'S', 12})},
      {14, false, "IN", bytes({2, 3, 4, 4, 5, 'M', 6, 7, 'S', 8, 9, 'M', 10, 11, 'S', 12})},
      {2, false, "PB", bytes({2, 3, 4, 12})},
      {13, false, "SS", bytes({2, 3, 4, 12})},
      {3, false, "DI", bytes({2, 3, 4, '1', 4, 6, 'M', 5, 7, 'S', 12})},
      {4, false, "DI", bytes({2, 3, 4, '2', 4, 6, 'M', 5, 7, 'S', 12})},
      {4, true, "RO", bytes({2, 3, 4, '2', 4, 6, 'M', 5, 7, 'S', 12})},
      {5, false, "T1", bytes({2, 3, 4, 4, 'M', 5, 'S', 6, 'M', 7, 'S', 12})},
      {21, false, "T5", bytes({2, 3, 4, 4, 'M', 5, 'S', 6, 'M', 7, 'S', 12})},
      {9, false, "UD", bytes({2, 3, 4, '1', 4, 5, 10, 'M', 8, 'M', 6, 7, 11, 'S', 9, 'S', 12})},
      {10, false, "LC", "O"},
      {12, false, "RS", ""},
      {20, false, "AU", bytes({5, 6, 7, 8})},
  };
  for (const auto& row : rows) {
    setMemory(50, 16, block);
    setMemory(50, 56, bytes({0xC5}));
    setMemory(50, 1, bytes({row.number}));
    setMemory(0x10, 255 - 50, bytes({row.marked ? 50 : 0}));
    EXPECT_EQ(read(50), (Output{0, row.code, row.items, static_cast<std::int16_t>(row.items.size())}))
        << row.number;
  }
  setMemory(50, 17, bytes({0}));
  setMemory(50, 1, bytes({10}));
  EXPECT_EQ(read(50).parameters, "I");
}

TEST_F(CtlParam, ArgumentsAreCheckedInOrder) {
  EXPECT_EQ(serial.Ctl_Param("X", 0, ""), 112);
  EXPECT_EQ(serial.Ctl_Param("X", 100, ""), 112);
  EXPECT_EQ(serial.Ctl_Param("X", 99, ""), 101);
  EXPECT_EQ(serial.Ctl_Param("r", 5, ""), 101);
  EXPECT_EQ(serial.Ctl_Param("", 5, "??"), 111);
  EXPECT_EQ(serial.Ctl_Param("W", 5, ""), 111);
  EXPECT_EQ(serial.Ctl_Param("RW", 1, "BI"), 111);
  EXPECT_EQ(serial.Ctl_Param("W", 2, "RC"), 111);
  EXPECT_TRUE(requests.empty());
  EXPECT_EQ(serial.Ctl_Param("R", 99, ""), 111) << "a stored mode that is none";
}

TEST_F(CtlParam, ModeAlone) {
  EXPECT_EQ(read(5, 0), (Output{0, "T1", "old", 0}));
  EXPECT_EQ(requests, (Requests{"read  1 V 0501"}));
  EXPECT_EQ(read(5, -3), (Output{0, "T1", "old", -3}));
  EXPECT_EQ(read(19).mode, "AL");
  requests.clear();
  EXPECT_EQ(write(5, "RS", "ignored", 0), 0);
  EXPECT_EQ(requests, (Requests{"read  1 V 0501", "write 1 V 0501 0C"}));
  EXPECT_EQ(write(2, "RS", "", 0), 0);
  EXPECT_EQ(write(1, "RC", "", 0), 0);
  EXPECT_EQ(write(5, "I", "", 0), 0) << "a part of a code counts as the nearest one";
  EXPECT_EQ(read(5, 0).mode, "BI");
  EXPECT_EQ(write(5, "I", "", 1), 99) << "but it has no items";
}

TEST_F(CtlParam, BoundsOfOffsetAndCount) {
  for (const Layout& layout : parameters::layouts()) {
    const auto number = static_cast<Byte>(&layout - parameters::layouts().data() + 1);
    plant(number, layout.marked);
    const auto n = static_cast<std::int16_t>(layout.items.size());
    const std::string mode(layout.code);
    for (int offset = 0; offset < 256; ++offset) {
      const bool fits =
          layout.code == "AL" || (layout.code == "RC" ? offset % 2 == 0 : offset <= layout.bound);
      EXPECT_EQ(read(50, 255, static_cast<Byte>(offset)).result, fits ? 0 : 103) << mode << offset;
    }
    if (layout.code == "AL") continue;
    EXPECT_EQ(read(50).count, n) << mode;
    EXPECT_EQ(read(50, n).result, 0) << mode;
    EXPECT_EQ(read(50, static_cast<std::int16_t>(n + 1)).result, 102) << mode;
    EXPECT_EQ(read(50, 254).result, 102) << mode;
    EXPECT_EQ(read(50, 32767).result, 102) << mode;
    if (layout.bound == 0 || layout.code == "AU") continue;
    EXPECT_EQ(read(50, 255, layout.bound), (Output{0, mode, read(50).parameters.substr(layout.bound), 1}))
        << mode;
    EXPECT_EQ(read(50, n, 1).result, 102) << mode;
  }
  // The offset does not count for "AU": two characters, but four items reported.
  plant(20);
  EXPECT_EQ(read(50, 255, 2), (Output{0, "AU", memoryAt(50, 22, 2), 4}));
  EXPECT_EQ(read(50, 4, 3), (Output{0, "AU", memoryAt(50, 23, 1), 4}));
}

TEST_F(CtlParam, WritingWhatWasReadChangesNothing) {
  for (const Layout& layout : parameters::layouts()) {
    const auto number = static_cast<Byte>(&layout - parameters::layouts().data() + 1);
    plant(number, layout.marked);
    const auto before = controller.snapshot();
    const auto items = static_cast<int>(layout.items.size());
    for (int offset = 0;
         offset <= (layout.offsets == parameters::OffsetRule::upToBound ? layout.bound : items); ++offset) {
      for (int count = 1; offset + count <= items; ++count) {
        const Output o = read(50, static_cast<std::int16_t>(count), static_cast<Byte>(offset));
        if (o.result == 103) continue;
        ASSERT_EQ(o.result, 0) << layout.code << offset << " " << count;
        EXPECT_EQ(write(50, o.mode, o.parameters, o.count, static_cast<Byte>(offset)), 0)
            << o.mode << offset << " " << count;
      }
    }
    EXPECT_EQ(controller.snapshot(), before) << layout.code;
  }
}

TEST_F(CtlParam, WhatIsWrittenReadsBackAndNothingElseMoves) {
  for (const Layout& layout : parameters::layouts()) {
    const std::string mode(layout.code);
    for (std::size_t k = 0; k < layout.items.size(); ++k) {
      if (layout.bound == 0 && k > 0) break;
      if (layout.offsets == parameters::OffsetRule::even && k % 2 != 0) continue;
      for (int value = 0; value < 256; ++value) {
        const auto number = static_cast<Byte>(&layout - parameters::layouts().data() + 1);
        plant(number, layout.marked);
        const Bytes all = read(50).parameters;
        const auto before = controller.snapshot();
        const Bytes item(1, character(value));
        const Byte result = write(50, mode, item, 1, static_cast<Byte>(k));
        if (result == 105) {
          EXPECT_EQ(controller.snapshot(), before) << mode << k;
          continue;
        }
        ASSERT_EQ(result, 0) << mode << k;
        Bytes expected = all;
        expected[k] = item[0];
        EXPECT_EQ(testing::PrintToString(read(50).parameters), testing::PrintToString(expected)) << mode << k;
      }
    }
  }
}

TEST_F(CtlParam, WholeBlocksAreWrittenInFewTransactions) {
  plant(1);
  const Output o = read(50);
  requests.clear();
  EXPECT_EQ(write(50, "BI", o.parameters), 0);
  ASSERT_EQ(requests.size(), 6U);
  EXPECT_EQ(requests[0], "read  1 V 3201");
  EXPECT_EQ(requests[1], "read  1 V 3210");
  EXPECT_EQ(requests[2], "read  1 V 3238");
  EXPECT_EQ(requests[3].substr(0, 15), "write 11 V 3210");
  EXPECT_EQ(requests[4].substr(0, 14), "write 1 V 3238");
  EXPECT_EQ(requests[5], "write 1 V 3201 01");

  requests.clear();
  EXPECT_EQ(write(50, "LO", Bytes(16, 'x')), 0);
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_EQ(requests[1].substr(0, 11), "write 16 H ");
}

TEST_F(CtlParam, WrongItemsAreRefusedBeforeTheFirstByte) {
  plant(1);
  const auto before = controller.snapshot();
  const Bytes good = read(50).parameters;
  EXPECT_EQ(write(50, "BI", good.substr(1)), 104);
  EXPECT_EQ(write(50, "BI", good + "x"), 104);
  EXPECT_EQ(write(50, "BI", "", -5), 104);
  EXPECT_EQ(write(50, "BI", Bytes(100000, 'M')), 104);
  EXPECT_EQ(write(50, "BI", "x", 1, 16), 103);
  EXPECT_EQ(write(50, "BI", "x", 17, 0), 102);
  for (const auto& [item, value] :
       std::vector<std::pair<int, int>>{{1, 16}, {2, 16}, {5, 'm'}, {5, 'X'}, {5, 0}, {15, 255}}) {
    Bytes bad = good;
    bad[static_cast<std::size_t>(item)] = character(value);
    EXPECT_EQ(write(50, "BI", bad), 105) << item << " " << value;
  }
  EXPECT_EQ(write(50, "DI", "3", 1, 3), 105);
  EXPECT_EQ(write(50, "RO", "1", 1, 3), 105);
  EXPECT_EQ(controller.snapshot(), before);
}

TEST_F(CtlParam, DimmersAndRollersShareANumber) {
  const auto stored = [&] { return memoryAt(50, 1, 1) + memoryAt(0x10, 255 - 50, 1); };
  plant(5);
  EXPECT_EQ(write(50, "DI", "2", 1, 3), 0);
  EXPECT_EQ(stored(), bytes({4, 6})) << "a marker of another value says dimmer already";
  EXPECT_EQ(write(50, "RO", "2", 1, 3), 0);
  EXPECT_EQ(stored(), bytes({4, 50}));
  EXPECT_EQ(read(50).mode, "RO");
  EXPECT_EQ(write(50, "DI", "M", 1, 6), 0);
  EXPECT_EQ(stored(), bytes({4, 0})) << "without item 3 the number that fits stays, and the marker goes";
  EXPECT_EQ(read(50).mode, "DI");
  EXPECT_EQ(write(50, "DI", "1", 1, 3), 0);
  EXPECT_EQ(stored(), bytes({3, 0}));
  EXPECT_EQ(write(50, "RO", "M", 1, 6), 0);
  EXPECT_EQ(stored(), bytes({4, 50}));
  plant(5);
  EXPECT_EQ(write(50, "DI", "M", 1, 6), 0);
  EXPECT_EQ(stored(), bytes({3, 6})) << "any other number gives way to the code's own";
}

TEST_F(CtlParam, AFailedTransactionEndsTheCallWhereItIs) {
  for (int step = 1; step <= 3; ++step) {
    openWith("status=7@" + std::to_string(step));
    const Output o = read(5);
    EXPECT_EQ(o.result, 7) << step;
    EXPECT_EQ(o.mode, step == 1 ? "??" : "T1");
    EXPECT_EQ(o.parameters, step == 1 ? "old" : "");
    EXPECT_EQ(requests.size(), static_cast<std::size_t>(step));
  }
  openWith("short=12@1");
  EXPECT_EQ(read(5).result, 100) << "an empty reply";
  for (int step = 1; step <= 5; ++step) {
    open(LinkKind::ethernetQ);
    plant(1);
    const Output o = read(50);
    const Bytes page = memoryAt(50, 0, 256);
    openWith("status=7@" + std::to_string(step));
    Bytes changed = o.parameters;
    changed[0] = '\x55';
    changed[15] = '\x01';
    EXPECT_EQ(write(50, "BI", changed), 7) << step;
    EXPECT_EQ(memoryAt(50, 17, 1), step > 4 ? bytes({0x55}) : page.substr(17, 1)) << step;
    EXPECT_EQ(memoryAt(50, 56, 1), page.substr(56, 1)) << step;
  }
}

TEST_F(CtlParam, ModeToStrAsksForTheMarker) {
  setMemory(0x10, 255 - 7, bytes({7}));
  EXPECT_EQ(serial.ModeToStr(4, 7), "RO");
  EXPECT_EQ(requests, (Requests{"read  1 V 10F8"}));
  setMemory(0x10, 255 - 7, bytes({6}));
  EXPECT_EQ(serial.ModeToStr(4, 7), "DI");
  EXPECT_EQ(serial.ModeToStr(0, 7) + serial.ModeToStr(22, 7) + serial.ModeToStr(255, 7), "");
  EXPECT_EQ(serial.ModeToStr(8, 7) + serial.ModeToStr(21, 7) + serial.ModeToStr(3, 7), "T4T5DI");
  openWith("status=7@1");
  EXPECT_EQ(serial.ModeToStr(4, 7), "DI");
  openWith("short=12@1");
  EXPECT_EQ(errorOf([&] { serial.ModeToStr(4, 7); }), 5);
}

TEST_F(CtlParam, ModeToNrFindsAnyPart) {
  const std::vector<std::pair<std::string, int>> table{
      {"BI", 1},    {"T5", 21}, {"RO", 4}, {"DI", 3},   {"bi", 0},
      {"", 0},      {"|", 0},   {"I", 1},  {"I|", 1},   {"|P", 2},
      {"BI|PB", 1}, {"O", 4},   {"ro", 0}, {"BIPB", 0}, {std::string("BI\0", 3), 0}};
  for (const auto& [text, number] : table) EXPECT_EQ(serial.ModeToNr(text), number) << text;
  for (Byte n = 1; n <= 21; ++n) {
    if (n != 4) {
      EXPECT_EQ(serial.ModeToNr(serial.ModeToStr(n, 1)), n);
    }
  }
}

}  // namespace
}  // namespace velk::test
