#include "modules/module_house.h"

namespace velk::test {
namespace {

using Requests = std::vector<std::string>;

const std::string gsm = "930100";

TEST(GsmTextTest, WriteAndRead) {
  ModuleHouse house;
  EXPECT_EQ(house.serial.GSMtext("W", gsm, 200, "20 characters long !"), 0);
  EXPECT_EQ(house.requests, (Requests{"write 16 H+ 001A 32 30 20 63 68 61 72 61 63 74 65 72 73 20 6C 6F",
                                      "write 4 H+ 101A 6E 67 20 21", "write 6 V 000A DE C8 9F 5D 01 00",
                                      "write 1 V 0000 FF", "read  1 V 0000", "read  1 V 000A"}));
  EXPECT_EQ(house.spent(), 106);
  Bytes data = "old";
  house.restart();
  EXPECT_EQ(house.serial.GSMtext("R", gsm, 200, data), 0);
  EXPECT_EQ(data, padded("20 characters long !", 64, '\0'));
  EXPECT_EQ(house.requests, (Requests{"write 6 V 000A DE C8 1F 5D 01 00", "write 1 V 0000 FF",
                                      "read  1 V 0000", "read  1 V 000A", "read  16 H+ 001A",
                                      "read  16 H+ 101A", "read  16 H+ 201A", "read  16 H+ 301A"}));
  EXPECT_EQ(house.serial.GSMtext("R", gsm, 201, data), 0);
  EXPECT_EQ(data, Bytes(64, '\0')) << "each text has a number of its own";
  house.restart();
  EXPECT_EQ(house.serial.GSMtext("W", gsm, 1, ""), 0);
  EXPECT_EQ(house.requests.size(), 4U) << "no block";
  EXPECT_EQ(house.serial.GSMtext("W", gsm, 1, Bytes(257, 'x')), 99) << "no place for the last block";
}

TEST(GsmTextTest, ReadTriesThreeTimes) {
  const struct {
    simulator::Faults faults;
    int result;
    std::size_t triggers;
  } rows[] = {
      {{"code=127@1"}, 0, 2},     {{"code=127@1-2"}, 0, 3},  {{"code=127@1-2", "code=128@3-"}, 128, 3},
      {{"code=9@*"}, 100, 3},     {{"stuck@1"}, 0, 2},       {{"stuck@*"}, 255, 3},
      {{"pending=2000@1"}, 0, 2}, {{"pending=500@1"}, 0, 1}, {{"status=7@1"}, 7, 0},
      {{"status=7@2"}, 7, 1},     {{"status=7@3"}, 0, 1},    {{"status=7@5"}, 7, 1},
      {{"status=7@6"}, 0, 2},     {{"status=7@8"}, 0, 2},    {{"status=7@6-8"}, 7, 2},
  };
  int number = 0;
  for (const auto& row : rows) {
    ModuleHouse house(row.faults);
    Bytes data = "old";
    EXPECT_EQ(house.serial.GSMtext("R", gsm, 1, data), row.result) << number;
    EXPECT_EQ(house.countOf("write 1 V 0000 FF"), row.triggers) << number;
    EXPECT_EQ(data.size(), row.result == 0 ? 64U : 3U) << number;
    EXPECT_LE(house.countOf("write 6 V 000A DE 01 1F 5D 01 00"), 1U) << "the header is written once";
    ++number;
  }
}

/// An interface of kind Q that carries everything out, but answers each poll of the trigger with this
/// payload.
class OddTrigger final : public simulator::Peer {
 public:
  explicit OddTrigger(Bytes payload) : payload_(std::move(payload)) {}

  std::vector<simulator::Delivery> connected() override { return {{.bytes = "Welcome to VELK TCP/IP"}}; }

  std::vector<simulator::Delivery> received(std::string_view request) override {
    const std::string_view memory = request.substr(12);
    const bool polls = memory == bytes({'/', 2, 0x20, 0, 0});
    triggers += memory == bytes({'/', 2, 0x60, 0, 0, 255}) ? 1 : 0;
    const Bytes payload = polls ? payload_ : Bytes(1, '\0');
    const bool login = request[9] == '\xF0';
    const int length = login ? 0 : static_cast<int>(payload.size());
    return {{.bytes = Bytes(request.substr(0, 10)) + bytes({0, length}) + payload}};
  }

  static inline int triggers = 0;

 private:
  Bytes payload_;
};

TEST(GsmTextTest, ATriggerIsTakenAsItIsRead) {
  const std::pair<Bytes, int> rows[] = {{bytes({7, 0}), 0}, {bytes({0}), 0},    {bytes({7}), 7},
                                        {bytes({7, 5}), 5}, {bytes({0, 9}), 9}, {Bytes(), 99}};
  for (const auto& [payload, result] : rows) {
    simulator::LoopbackHost host;
    host.listen("house", 1000, [&] { return std::make_unique<OddTrigger>(payload); });
    Serial serial(host);
    ASSERT_EQ(serial.OpenTCP("house", 1000), 0);
    OddTrigger::triggers = 0;
    Bytes data = "old";
    EXPECT_EQ(serial.GSMtext("R", gsm, 1, data), result) << testing::PrintToString(payload);
    EXPECT_EQ(data, "old") << "no text was read, whatever the result";
    EXPECT_EQ(OddTrigger::triggers, payload.empty() ? 1 : 3) << testing::PrintToString(payload);
  }
}

TEST(GsmTextTest, FailuresOfAWrite) {
  const std::pair<const char*, int> rows[] = {{"status=7@1", 7}, {"status=7@2", 7},  {"status=7@3", 7},
                                              {"status=7@4", 7}, {"status=7@5", 0},  {"status=7@5-", 100},
                                              {"status=7@6", 0}, {"status=7@6-", 7}, {"stuck@1", 100},
                                              {"code=9@1", 9},   {"code=255@1", 255}};
  for (const auto& [fault, result] : rows) {
    ModuleHouse house({fault});
    EXPECT_EQ(house.serial.GSMtext("W", gsm, 1, "20 characters long !"), result) << fault;
    EXPECT_EQ(house.countOf("write 1 V 0000 FF"), std::string(fault) < "status=7@4" && result == 7 ? 0U : 1U)
        << fault;
  }
  simulator::LoopbackHost host;
  Serial serial(host);
  EXPECT_EQ(serial.GSMtext("R", gsm, 1, ""), 99) << "no port is open";
}

}  // namespace
}  // namespace velk::test
