#include "cli/backup/backup_file.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/backup/check.h"
#include "cli/backup/checksum.h"
#include "cli/tool.h"

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

/// What a reader says of a text, or refuses it with.
std::string verdict(const std::string& text) {
  try {
    return textOf(parseBackup(text).condition);
  } catch (const std::invalid_argument& error) {
    EXPECT_STRNE(error.what(), "");
    return error.what();
  }
}

/// Whether a reader takes a text for a file that nobody touched.
bool passesUnseen(const std::string& text) {
  return verdict(text) == "the file is as velk wrote it";
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
  std::string dos;
  for (const std::string& line : split(smallFile)) dos += line.substr(0, line.size() - 1) + "\r\n";
  EXPECT_TRUE(passesUnseen(dos)) << "ends of lines are the system's";
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

TEST(BackupFileTest, SaysWhatCannotBe) {
  const std::string zeros(32, '0');
  const auto line = [&](const char* key) { return "\"" + std::string(key) + "\": \"" + zeros + "\""; };
  const std::size_t count = parseBackup(wholeHouse()).lines.size();
  const auto house = [&](const std::string& from, const std::string& to, int more = 0) {
    const std::string text = replaced(wholeHouse(), from, to);
    const std::string lines = "\"lines\": ";
    return verdict(replaced(text, lines + std::to_string(count),
                            lines + std::to_string(static_cast<int>(count) + more)));
  };
  const std::pair<std::string, std::string> rows[] = {
      {verdict(replaced(smallFile, "\"lines\": 3", "\"lines\": 4")), "it should have 4 lines and has 3"},
      {verdict(replaced(smallFile, "\"0500\"", "\"0510\"")), "\"0510\" stands there twice"},
      {verdict(replaced(smallFile, "\"0500\"", "\"050\"")), "\"0\" is no pair of hexadecimal digits"},
      {verdict(replaced(smallFile, "\"0500\"", "\"6400\"")),
       "line V 6400 has a value at byte 1, which belongs to nothing"},
      {verdict(replaced(smallFile, "\"0500\": \"0005", "\"6400\": \"0000")),
       "line V 6400 belongs to nothing"},
      {verdict(replaced(smallFile, "\"version\": 2", "\"version\": 3")), "its version is not known here"},
      {house("   " + line("0110") + ",\n", ""), "it should have "},
      {house("   " + line("0120") + ",\n", "", -1), "line V 0120 is missing"},
      {house("\"0000\": \"ff00", "\"0010\": \"" + zeros + "\",\n   \"0000\": \"ff00", 1),
       "line H+ 0010 stands behind the last event"},
      {house("\"0000\": \"ff00", "\"0000\": \"ff01"), "line H+ 0000 has more behind the last event"},
  };
  for (const auto& [said, expected] : rows) EXPECT_EQ(said.substr(0, expected.size()), expected) << said;

  // A mode is a number from 1 to 21, or 0 for none.
  Lines lines = parseBackup(smallFile).lines;
  const auto setMode = [&](char mode) { lines.begin()->second[1] = mode; };
  setMode(21);
  EXPECT_NO_THROW(checkModes(lines));
  setMode(22);
  EXPECT_THROW(checkModes(lines), std::invalid_argument);
}

}  // namespace
}  // namespace velk::cli
