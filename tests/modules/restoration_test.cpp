#include "modules/restoration.h"

#include "modules/module_house.h"

namespace velk::test {
namespace {

using modules::Restoration;
using modules::restorationOf;

/// A record that each type takes, with a channel mask at these positions.
Bytes recordWith(std::size_t size, const std::vector<std::size_t>& masks) {
  Bytes record;
  while (record.size() < size) record += record.size() % 2 == 0 ? '\x03' : '\x01';
  for (const std::size_t position : masks) record[position - 1] = "\xEE\xDD\xBB\x77"[(position / 2 + 3) % 4];
  return record;
}

TEST(RestorationTest, EveryTypeGetsItsBytesBackOrIsToldNotTo) {
  using Masks = std::vector<std::size_t>;
  const Masks none, four{2, 4, 6, 8};
  const Masks eight{2, 4, 6, 8, 10, 12, 14, 16}, video{2, 4, 6, 8, 26, 28, 30, 32};
  const std::string lost = "its selections do not read as they are written";
  const std::string length = "a record of this type is not written in the length in which it is read";
  const std::string refused = "a write of it is refused with 99";
  const struct {
    const char* number;
    bool known;
    std::size_t size;
    Masks masks;
    std::string obstacle;
  } rows[] = {
      // clang-format off
      {"005000", false, 1, none, ""},      {"005000", true, 1, none, refused},
      {"080100", true, 6, none, ""},       {"800000", true, 16, four, ""},
      {"090100", false, 10, none, length}, {"090100", true, 16, four, ""},
      {"030010", true, 2, {2}, refused},   {"040100", false, 8, none, ""},
      {"120100", true, 8, four, ""},       {"060001", true, 74, none, ""},
      {"070001", true, 11, four, ""},      {"300000", true, 32, eight, ""},
      {"100100", false, 22, none, ""},     {"100100", true, 22, four, ""},
      {"110100", false, 70, none, ""},     {"110100", true, 70, four, lost},
      {"210001", true, 24, four, ""},      {"270100", false, 7, {2}, ""},
      {"290100", true, 7, {2}, ""},        {"700100", false, 20, none, length},
      {"750000", true, 29, none, lost},    {"760000", true, 29, four, lost},
      {"830100", true, 3, {2}, refused},   {"831000", true, 5, none, length},
      {"910000", true, 11, none, ""},      {"951500", true, 32, video, ""},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.number + std::string(row.known ? " known" : ""));
    const modules::Subject subject{.serialNumber = row.number, .known = row.known};
    const Byte start = row.known ? 1 : 0;
    const std::string name = row.known ? "MT001" : "X1";
    const Bytes original = recordWith(row.size, row.masks);
    ModuleHouse source(row.number, name, original, start);
    const Record record = source.read(row.number);
    ASSERT_EQ(record.result, 0);
    EXPECT_EQ(record.offset, start + piecesToRead(subject));
    const Restoration found = restorationOf(subject, record.data);
    EXPECT_EQ(found.obstacle, row.obstacle);
    if (!found.obstacle.empty()) continue;
    ModuleHouse target(row.number, name);
    EXPECT_EQ(target.write(row.number, found.data), 0);
    EXPECT_EQ(target.written().substr(0, row.size), original);
  }
}

TEST(RestorationTest, SelectionsAsTheyAreRead) {
  const modules::Subject subject{.serialNumber = "960000", .known = true};
  for (int field = 0; field < 16; ++field) {
    Bytes record(32, '\x01');
    record[31] = character(field);
    const Restoration found = restorationOf(subject, record);
    const bool possible = field == 9 || (field >= 1 && field <= 4);
    EXPECT_EQ(found.obstacle, possible ? "" : "it holds a selection that no write gives") << field;
    record[31] = character(field == 9 ? 0 : field);
    EXPECT_EQ(found.data, possible ? record : "") << "9 is what a written 0 reads as";
  }
}

TEST(RestorationTest, RecordsThatAreNoRecords) {
  const Bytes pairs = "\x03\x01\x03\x01\x03\x01\x03\x01";
  const std::tuple<modules::Subject, Bytes, const char*> rows[] = {
      {{"980500", false}, Bytes(16, 'x'), "a long record can be read but not written"},
      {{"210001", false}, Bytes(16, 'x'), "the record did not come whole"},
      {{"000001", false}, "\xFF", ""},  // its record is not checked
      {{"005000", false}, "\x02", "a write of it is refused with 112"},
      {{"090500", true}, pairs + Bytes(8, '\x0C'), ""},
      {{"090500", true}, pairs + Bytes(8, '\x0D'), "a write of it is refused with 105"}};
  for (const auto& [subject, record, obstacle] : rows)
    EXPECT_EQ(restorationOf(subject, record).obstacle, obstacle) << subject.serialNumber;
  EXPECT_EQ(modules::piecesToRead({"980500", false}), 1);
  EXPECT_TRUE(modules::isWhole({"980500", false}, "x") && !modules::isWhole({"980500", false}, ""));
  EXPECT_TRUE(modules::isOwnModule("000001") && !modules::isOwnModule("000002"));
}

}  // namespace
}  // namespace velk::test
