#include "cli/house/backup_file.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/house/checksum.h"
#include "cli/tool.h"
#include "simulator/house.h"
#include "values/hex.h"

namespace velk::cli {
namespace {

constexpr const char* smallFile = R"({
 "format": "velk-backup",
 "version": 2,
 "begun": "2024-03-04 10:20:30",
 "link": "simulate:",
 "complete": false,
 "lines": 3,
 "memory": {
  "V": {
   "0500": "00050000000000000000000000000000",
   "0510": "00000000000000000000000000000001"
  },
  "H": {},
  "H+": {
   "0a00": "526164696f2020202020202020202020"
  }
 },
 "modules": [],
 "checksum": "e9ac569d"
}
)";

/// Texts by their lines, with the ends of lines.
std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const char c : text) {
    lines.back() += c;
    if (c == '\n') lines.emplace_back();
  }
  lines.pop_back();
  return lines;
}

std::string join(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line;
  return text;
}

/// Whether a reader takes a text for a file that nobody touched.
bool passesUnseen(const std::string& text) {
  try {
    return parseBackup(text).condition == Condition::intact;
  } catch (const std::invalid_argument&) {
    return false;
  }
}

const std::string& wholeHouse() {
  static const std::string text = velk("backup --simulate --modules 090500 -").text;
  return text;
}

TEST(BackupFileTest, IsWrittenAsItIsRead) {
  EXPECT_EQ(crc32("123456789"), 0xCBF43926U);
  const Backup backup = parseBackup(smallFile);
  EXPECT_EQ(backup.condition, Condition::intact);
  EXPECT_EQ(byteOf(backup.lines, {.area = Area::external, .page = 5, .offset = 31}), 1);
  EXPECT_EQ(textOf(backup), smallFile);
  EXPECT_EQ(textOf(parseBackup(wholeHouse())), wholeHouse());
}

TEST(BackupFileTest, TheSmallHouseIsTheOneThatTestsAndExamplesLeanOn) {
  const Backup backup = parseBackup(contentOf(VELK_TESTS_DIR "/cli/house.json"));
  EXPECT_EQ(backup.condition, Condition::unverified);
  simulator::Store store = storeOf(backup.lines);
  store.write({.page = 255, .offset = 247}, bytesOfHex("000030201001040324"));
  EXPECT_TRUE(store == simulator::house());
  EXPECT_EQ(linesOf(store), parseBackup(wholeHouse()).lines);
}

/// Lines of a file changed in every place, left out, doubled, and each one put in another's place: all lines
/// of a small one, some of a whole house.
TEST(BackupFileTest, NoEditOfALinePassesUnseen) {
  for (const auto& [file, step] : {std::pair(std::string(smallFile), 1U), std::pair(wholeHouse(), 1997U)}) {
    const std::vector<std::string> lines = split(file);
    const auto expectSeen = [&](auto edit) {
      auto edited = lines;
      edit(edited);
      const std::string text = join(edited);
      EXPECT_TRUE(text == file || !passesUnseen(text)) << text.substr(0, 2000);
    };
    const auto at = [](auto& edited, std::size_t i) {
      return edited.begin() + static_cast<std::ptrdiff_t>(i);
    };
    for (std::size_t i = 0; i < lines.size(); i += step) {
      for (std::size_t k = 0; k < lines[i].size(); k += std::min(step, 20U)) {
        for (const char* const typed : {"", "0", "1", "\"", " ", ",", "00"}) {
          expectSeen([&](auto& edited) { edited[i].replace(k, 1, typed); });
        }
      }
      expectSeen([&](auto& edited) { edited.erase(at(edited, i)); });
      for (std::size_t k = 0; k < lines.size(); k += step) {
        expectSeen([&](auto& edited) { edited.insert(at(edited, k), lines[i]); });
        expectSeen([&](auto& edited) { edited[k] = lines[i]; });
        expectSeen([&](auto& edited) { std::swap(edited[k], edited[i]); });
      }
    }
  }
}

}  // namespace
}  // namespace velk::cli
