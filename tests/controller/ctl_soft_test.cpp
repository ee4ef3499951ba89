#include "support/simulated_house.h"

namespace velk::test {
namespace {

using Requests = std::vector<std::string>;

class CtlSoft : public SimulatedHouse {
 protected:
  void SetUp() override { open(LinkKind::ethernetQ); }

  struct Link {
    int destination = 9;
    std::string kind = "?";
    int parameters1 = 9;
    int parameters2 = 9;
    bool high = true;
    bool low = true;
    friend bool operator==(const Link&, const Link&) = default;
    friend void PrintTo(const Link& l, std::ostream* out) {
      *out << l.kind << l.destination << " " << l.parameters1 << " " << l.parameters2 << " " << l.high
           << l.low;
    }
  };

  Byte call(const std::string& direction, int source, int sub, Link& link) {
    auto destination = static_cast<Byte>(link.destination);
    auto p1 = static_cast<Byte>(link.parameters1);
    auto p2 = static_cast<Byte>(link.parameters2);
    const Byte result = serial.Ctl_Soft(direction, static_cast<Byte>(source), static_cast<Byte>(sub),
                                        destination, link.kind, p1, p2, link.high, link.low);
    link = {destination, link.kind, p1, p2, link.high, link.low};
    return result;
  }

  Byte write(int source, int sub, Link link) { return call("W", source, sub, link); }
};

TEST_F(CtlSoft, ReadsOutputAndInputLinks) {
  setMemory(30, 35, bytes({0x85, 0x3A}));
  setMemory(30, 254, bytes({0x40}));
  Link link;
  requests.clear();
  EXPECT_EQ(call("R", 30, 2, link), 0);
  EXPECT_EQ(link, (Link{5, "O", 3, 10, true, false}));
  EXPECT_EQ(requests, (Requests{"read  2 V 1E23", "read  1 V 1EFE"}));
  setMemory(30, 31, bytes({0x40, 0x77}));
  requests.clear();
  link.low = true;
  EXPECT_EQ(call("R", 30, 0, link), 0);
  EXPECT_EQ(link, (Link{0, "I", 0, 0, true, true}));
  EXPECT_EQ(requests.size(), 1U);
}

TEST_F(CtlSoft, ChecksInOrder) {
  Link link;
  for (const int source : {1, 2, 100, 125, 255}) EXPECT_EQ(write(source, 9, {1, "?"}), 112) << source;
  EXPECT_EQ(call("w", 1, 9, link), 101);
  EXPECT_EQ(write(124, 4, {1, "?"}), 115);
  EXPECT_EQ(write(0, 3, {1, "OI"}), 116);
  EXPECT_EQ(write(5, 1, {5, "O", 2}), 112) << "a link to itself";
  EXPECT_TRUE(requests.empty());
  EXPECT_EQ(write(5, 1, {5, "O", 1}), 0);
  EXPECT_EQ(write(5, 1, {5, "I", 2}), 0);
}

TEST_F(CtlSoft, WritesRecordAndFlanks) {
  const struct {
    Link link;
    const char* record;
  } rows[] = {
      {{1, "O", 0x1F, 0x2E}, "81 FE"}, {{127, "O", 1, 2}, "FF 12"},  {{129, "O", 3, 0}, "81 83"},
      {{255, "", 63, 9}, "FF FF"},     {{200, "IO", 0, 1}, "C8 C0"},
  };
  for (const auto& row : rows) {
    setMemory(40, 254, bytes({0xFF}));
    requests.clear();
    Link link = row.link;
    link.low = false;
    EXPECT_EQ(write(40, 2, link), 0);
    EXPECT_EQ(requests,
              (Requests{std::string("write 2 V 2823 ") + row.record, "read  1 V 28FE", "write 1 V 28FE FB"}));
  }
  requests.clear();
  EXPECT_EQ(write(40, 3, {0, "O", 5, 5}), 0);
  EXPECT_EQ(write(40, 0, {50, "I", 5, 5}), 0);
  EXPECT_EQ(write(40, 0, {101, "I", 5, 0xF5}), 0);
  EXPECT_EQ(requests, (Requests{"write 2 V 2825 00 00", "write 2 V 281F 32 00", "write 2 V 281F 65 05"}));
}

TEST_F(CtlSoft, ValuesThatDoNotFitAByteWriteNothing) {
  EXPECT_EQ(write(40, 0, {128, "O", 0, 0}), 100);
  EXPECT_EQ(write(40, 0, {129, "O", 64, 1}), 100);
  EXPECT_EQ(write(40, 0, {129, "O", 128, 0}), 100);
  EXPECT_TRUE(requests.empty());
}

TEST_F(CtlSoft, AFailureBetweenRecordAndFlanksLeavesTheOldFlanks) {
  for (int step = 1; step <= 3; ++step) {
    setMemory(40, 254, bytes({0xA5}));
    setMemory(40, 31, bytes({0, 0}));
    openWith("status=7@" + std::to_string(step));
    EXPECT_EQ(write(40, 0, {1, "O", 0, 0}), 7);
    EXPECT_EQ(memoryAt(40, 31, 1), bytes({step > 1 ? 0x81 : 0}));
    EXPECT_EQ(memoryAt(40, 254, 1), bytes({0xA5}));
  }
  openWith("status=7@2");
  setMemory(30, 35, bytes({0x85, 0x3A}));
  Link link;
  EXPECT_EQ(call("R", 30, 2, link), 7);
  EXPECT_EQ(link, (Link{5, "O", 3, 10, true, true}));
  openWith("short=14@1");
  link = {};
  EXPECT_EQ(call("R", 30, 2, link), 100);
  EXPECT_EQ(link.destination, 5) << "a record cut in two leaves its first half";
}

class CtlLang : public SimulatedHouse {};

TEST_F(CtlLang, WritesAllTextsThenReadsThem) {
  open(LinkKind::ethernetQ);
  EXPECT_EQ(serial.Ctl_Lang("n"), Value(std::int16_t{105}));
  EXPECT_EQ(serial.Ctl_Lang("NL"), Value(std::int16_t{105}));
  EXPECT_EQ(serial.Ctl_Lang(""), Value(std::int16_t{105}));
  EXPECT_TRUE(requests.empty());
  for (const char* language : {"N", "E", "F", "D", "B", "P", "S"}) {
    requests.clear();
    EXPECT_EQ(serial.Ctl_Lang(language), Value(std::int16_t{0})) << language;
    ASSERT_EQ(requests.size(), 58U);
    EXPECT_EQ(requests[0].substr(0, 15), "write 16 V 0628");
    EXPECT_EQ(requests[28].substr(0, 15), "write 16 V 2228");
    EXPECT_EQ(requests[29], "read  16 V 0628");
    EXPECT_EQ(requests[57], "read  16 V 2228");
  }
  const struct {
    const char* language;
    int slot;
    const char* text;
  } rows[] = {{"B", 6, "LIGADESLDESCSOBE"},  {"B", 7, "DESO            "},  {"P", 6, "LIGADESLBAIXCIMA"},
              {"P", 7, "BACI            "},  {"D", 14, "LOAD ALL ON     "}, {"F", 11, "Simulation OFF  "},
              {"S", 20, "COMFORT         "}, {"N", 34, "  ZEND IR-CODE  "}, {"E", 25, " TUESDAY        "},
              {"D", 27, " DONNERSTAG     "}};
  for (const auto& row : rows) {
    serial.Ctl_Lang(row.language);
    EXPECT_EQ(memoryAt(row.slot, 40, 16), row.text) << row.language;
  }
}

TEST_F(CtlLang, FailuresKeepTheirKinds) {
  openWith("status=7@3");
  EXPECT_EQ(serial.Ctl_Lang("E"), Value(std::int16_t{7}));
  EXPECT_EQ(requests.size(), 3U);
  openWith("status=9@30");
  EXPECT_EQ(serial.Ctl_Lang("E"), Value(std::int16_t{9}));
  openWith("short=20@30");
  EXPECT_EQ(serial.Ctl_Lang("E"), Value(std::int16_t{201})) << "a text that reads back short";
  openWith("short=12@30");
  EXPECT_EQ(serial.Ctl_Lang("E"), Value(Byte{100}))
      << "an empty reply is a run-time error, whose code is a byte";
}

class CtlIrText : public SimulatedHouse {};

TEST_F(CtlIrText, GoesToItsBlock) {
  open(LinkKind::fast);
  EXPECT_EQ(serial.Ctl_IRText("R", 64, "x"), 99);
  EXPECT_EQ(serial.Ctl_IRText("r", 0, "x"), 101);
  EXPECT_EQ(serial.Ctl_IRText("W", 64, "x"), 103);
  EXPECT_EQ(serial.Ctl_IRText("W", 255, "x"), 103);
  EXPECT_TRUE(requests.empty());
  EXPECT_EQ(serial.Ctl_IRText("W", 63, Bytes(20, 'x')), 0);
  EXPECT_EQ(serial.Ctl_IRText("", 17, ""), 0);
  EXPECT_EQ(memoryAt(240, 13, 16, simulator::Memory::highBlock), Bytes(16, 'x'));
  EXPECT_EQ(memoryAt(16, 11, 16, simulator::Memory::highBlock), Bytes(16, ' '));
}

}  // namespace
}  // namespace velk::test
