#include "modules/restoration.h"

#include "simulator/mailbox.h"
#include "support/simulated_house.h"

namespace velk::test {
namespace {

using modules::Restoration;
using modules::restorationOf;

/// A bus with one module on it.
class OneModule final : public SimulatedHouse {
 public:
  OneModule(const std::string& serieNr, bool known, const Bytes& record) : serieNr_(serieNr) {
    simulator::ModuleRow row{.serial = std::stoi(serieNr),
                             .skills = simulator::identifies,
                             .name = known ? "MT001" : "X1",
                             .version = {16, 1, 2},
                             .firstPiece = static_cast<Byte>(known ? 1 : 0),
                             .record = {}};
    for (const char c : record) row.record.push_back(byteValue(c));
    controller.attach(std::make_unique<simulator::Mailbox>(std::vector{simulator::Module(row)},
                                                           simulator::Faults(), simulator::Trace()));
    open(LinkKind::ethernetQ);
  }

  Byte call(const std::string& direction, Bytes& data, Byte& offset) {
    return serial.Module(direction, serieNr_, data, offset);
  }

  /// What the module holds, without a translation.
  Bytes held(Byte piece, std::size_t size) {
    Bytes bytes;
    for (; bytes.size() < size; ++piece) {
      const int number = std::stoi(serieNr_);
      serial.WriteCom(6, 0, 10, "V",
                      test::bytes({222, piece, 16 + 64, number / 10000, number / 100 % 100, number % 100}));
      serial.WriteCom(1, 0, 0, "V", "\xFF");
      bytes += serial.ReadCom(16, 0, 16, "V").substr(1);
    }
    return bytes.substr(0, size);
  }

 private:
  void TestBody() override {}

  std::string serieNr_;
};

/// A record that each type takes, with a channel mask at these positions.
Bytes recordWith(std::size_t size, const std::vector<int>& masks) {
  constexpr std::array channels{0xEE, 0xDD, 0xBB, 0x77};
  Bytes record;
  for (std::size_t i = 0; i < size; ++i) record += character(i % 2 == 0 ? 3 : 1);
  std::size_t next = 0;
  for (const int position : masks) {
    record[static_cast<std::size_t>(position) - 1] = character(channels[next++ % channels.size()]);
  }
  return record;
}

TEST(RestorationTest, EveryTypeGetsItsBytesBackOrIsToldNotTo) {
  using Masks = std::vector<int>;
  const Masks none;
  const Masks four{2, 4, 6, 8};
  const Masks eight{2, 4, 6, 8, 10, 12, 14, 16};
  const Masks video{2, 4, 6, 8, 26, 28, 30, 32};
  const std::string lost = "its selections do not read as they are written";
  const std::string length = "a record of this type is not written in the length in which it is read";
  const std::string refused = "a write of it is refused with 99";
  const struct {
    const char* serieNr;
    bool known;
    std::size_t size;
    Masks masks;
    std::string obstacle;
  } rows[] = {
      {"005000", false, 1, none, ""},      {"005000", true, 1, none, refused},
      {"080100", false, 6, none, ""},      {"080100", true, 6, none, ""},
      {"080300", false, 16, none, ""},     {"080300", true, 16, none, ""},
      {"800000", true, 16, four, ""},      {"010100", false, 10, none, length},
      {"090100", false, 10, none, length}, {"090100", true, 16, four, ""},
      {"090255", true, 16, four, ""},      {"030010", false, 2, none, ""},
      {"030010", true, 2, {2}, refused},   {"040100", false, 8, none, ""},
      {"120100", true, 8, four, ""},       {"060001", false, 74, none, ""},
      {"060001", true, 74, none, ""},      {"070001", false, 11, none, ""},
      {"070001", true, 11, four, ""},      {"300000", false, 32, none, ""},
      {"300000", true, 32, eight, ""},     {"100100", false, 22, none, ""},
      {"100100", true, 22, four, ""},      {"110100", false, 70, none, ""},
      {"110100", true, 70, four, lost},    {"240100", false, 70, none, ""},
      {"240100", true, 70, four, lost},    {"210001", false, 24, none, ""},
      {"210001", true, 24, four, ""},      {"260001", true, 24, four, ""},
      {"270100", false, 7, {2}, ""},       {"270100", true, 7, {2}, ""},
      {"290100", false, 7, none, ""},      {"290100", true, 7, {2}, ""},
      {"700100", false, 20, none, length}, {"706000", true, 32, four, length},
      {"710000", false, 32, none, length}, {"750000", false, 29, none, ""},
      {"750000", true, 29, none, lost},    {"760000", true, 29, four, lost},
      {"780000", false, 29, none, ""},     {"830100", false, 3, none, ""},
      {"830100", true, 3, {2}, refused},   {"830300", false, 3, none, ""},
      {"831000", true, 5, none, length},   {"880000", false, 22, none, ""},
      {"880000", true, 22, four, ""},      {"910000", true, 11, none, ""},
      {"930100", false, 3, none, ""},      {"930100", true, 3, none, ""},
      {"950010", false, 20, none, ""},     {"950010", true, 20, four, ""},
      {"951500", false, 32, none, ""},     {"951500", true, 32, video, ""},
      {"960000", true, 32, video, ""},     {"980050", false, 16, none, ""},
      {"990000", false, 4, none, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.serieNr + std::string(row.known ? " known" : ""));
    const modules::Subject subject{.serieNr = row.serieNr, .known = row.known};
    const Byte start = row.known ? 1 : 0;
    const Bytes original = recordWith(row.size, row.masks);
    OneModule source(row.serieNr, row.known, original);
    Bytes record;
    Byte offset = 0;
    ASSERT_EQ(source.call("R", record, offset), 0);
    EXPECT_EQ(offset, start + piecesToRead(subject));
    const Restoration found = restorationOf(subject, record);
    EXPECT_EQ(found.obstacle, row.obstacle);
    if (!found.obstacle.empty()) continue;
    OneModule target(row.serieNr, row.known, {});
    Bytes data = found.data;
    offset = 0;
    EXPECT_EQ(target.call("W", data, offset), 0);
    EXPECT_EQ(target.held(start, row.size), original);
  }
}

TEST(RestorationTest, SelectionsAsTheyAreRead) {
  const modules::Subject subject{.serieNr = "960000", .known = true};
  for (int field = 0; field < 16; ++field) {
    Bytes record(32, '\x01');
    record[31] = character(field);
    const Restoration found = restorationOf(subject, record);
    const bool possible = field == 9 || (field >= 1 && field <= 4);
    EXPECT_EQ(found.obstacle, possible ? "" : "it holds a selection that no write gives") << field;
    if (possible) {
      record[31] = character(field == 9 ? 0 : field);
      EXPECT_EQ(found.data, record) << "9 is what a written 0 reads as";
    }
  }
}

TEST(RestorationTest, RecordsThatAreNoRecords) {
  EXPECT_EQ(restorationOf({"980500", false}, Bytes(16, 'x')).obstacle,
            "a long record can be read but not written");
  EXPECT_EQ(restorationOf({"210001", false}, Bytes(16, 'x')).obstacle, "the record did not come whole");
  EXPECT_EQ(restorationOf({"000001", false}, "\xFF").obstacle, "") << "its record is not checked";
  EXPECT_EQ(restorationOf({"005000", false}, "\x02").obstacle, "a write of it is refused with 112");
  const Bytes pairs = "\x03\x01\x03\x01\x03\x01\x03\x01";
  EXPECT_EQ(restorationOf({"090500", true}, pairs + Bytes(8, '\x0C')).obstacle, "");
  EXPECT_EQ(restorationOf({"090500", true}, pairs + Bytes(8, '\x0D')).obstacle,
            "a write of it is refused with 105");
}

}  // namespace
}  // namespace velk::test
