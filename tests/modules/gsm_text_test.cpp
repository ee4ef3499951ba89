#include "modules/module_house.h"

namespace velk::test {
namespace {

const std::string gsm = "930100";

TEST(GsmTextTest, WriteAndRead) {
  ModuleHouse house({"code=127@2"});
  EXPECT_EQ(
      house.outcome(house.serial.GSMtext("W", gsm, 200, "20 characters long !")),
      "0: write 16 H+ 001A 32 30 20 63 68 61 72 61 63 74 65 72 73 20 6C 6F; write 4 H+ 101A 6E 67 20 21; "
      "write 6 V 000A DE C8 9F 5D 01 00; write 1 V 0000 FF; read  1 V 0000; read  1 V 000A");
  Bytes data = "old";
  EXPECT_EQ(house.serial.GSMtext("R", gsm, 201, data), 0) << "at the second attempt";
  EXPECT_EQ(data, Bytes(64, '\0')) << "each text has a number of its own";
  house.restart();
  EXPECT_EQ(house.outcome(house.serial.GSMtext("R", gsm, 200, data)),
            "0: write 6 V 000A DE C8 1F 5D 01 00; write 1 V 0000 FF; read  1 V 0000; read  1 V 000A; "
            "read  16 H+ 001A; read  16 H+ 101A; read  16 H+ 201A; read  16 H+ 301A");
  EXPECT_EQ(data, padded("20 characters long !", 64, '\0'));
  EXPECT_EQ(house.serial.GSMtext("W", gsm, 1, ""), 0);
  EXPECT_EQ(house.requests.size(), 4U) << "no block";
  EXPECT_EQ(house.serial.GSMtext("W", gsm, 1, Bytes(257, 'x')), 99) << "no place for the last block";
  EXPECT_EQ(ModuleHouse({"disconnect@1"}).serial.GSMtext("W", gsm, 1, ""), 252);
}

/// An interface of kind Q that carries everything out, but answers each poll of the trigger with this
/// payload.
class OddTrigger final : public simulator::Peer {
 public:
  explicit OddTrigger(Bytes payload) : payload_(std::move(payload)) {}

  std::vector<simulator::Delivery> connected() override { return {{.bytes = "Welcome to VELK TCP/IP"}}; }

  std::vector<simulator::Delivery> received(std::string_view request) override {
    const bool isPoll = request.substr(12) == bytes({'/', 2, 0x20, 0, 0});
    const Bytes payload = isPoll ? payload_ : Bytes(request[9] == '\xF0' ? 0 : 1, '\0');
    return {{.bytes = Bytes(request.substr(0, 10)) + bytes({0, static_cast<int>(payload.size())}) + payload}};
  }

 private:
  Bytes payload_;
};

TEST(GsmTextTest, ATriggerIsTakenAsItIsRead) {
  const std::pair<Bytes, int> rows[] = {{bytes({7, 0}), 0}, {bytes({0}), 0},    {bytes({7}), 7},
                                        {bytes({7, 5}), 5}, {bytes({0, 9}), 9}, {"", 99}};
  for (const auto& [payload, result] : rows) {
    simulator::LoopbackHost host;
    host.listen("house", 1000, [&] { return std::make_unique<OddTrigger>(payload); });
    Serial serial(host);
    ASSERT_EQ(serial.OpenTCP("house", 1000), 0);
    Bytes data = "old";
    EXPECT_EQ(serial.GSMtext("R", gsm, 1, data), result) << testing::PrintToString(payload);
    EXPECT_EQ(data, "old") << "no text was read, whatever the result";
  }
}

}  // namespace
}  // namespace velk::test
