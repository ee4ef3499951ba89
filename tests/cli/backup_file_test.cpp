#include "cli/backup/backup_file.h"

#include <gtest/gtest.h>

#include <random>
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

/// Whether a reader takes a text for a file that nobody touched.
bool passesUnseen(const std::string& text) {
  try {
    return parseBackup(text).condition == Condition::intact;
  } catch (const std::invalid_argument& error) {
    EXPECT_STRNE(error.what(), "");
    return false;
  }
}

/// What a reader refuses a text with; empty when it takes it.
std::string refusal(const std::string& text) {
  try {
    parseBackup(text);
    return {};
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

std::string with(std::string text, const std::string& from, const std::string& to) {
  const auto at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

const std::string& wholeHouse() {
  static const std::string text = velk({"backup", "--simulate", "--modules", "090500", "-"}).text;
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

/// Every line of a file changed in every place, left out, doubled, and each one put in another's place.
TEST(BackupFileTest, NoEditOfALinePassesUnseen) {
  const std::vector<std::string> lines = split(smallFile);
  const auto expectSeen = [&](const std::vector<std::string>& edited) {
    const std::string text = join(edited);
    EXPECT_TRUE(text == smallFile || !passesUnseen(text)) << text;
  };
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (std::size_t k = 0; k < lines[i].size(); ++k) {
      for (const char* const typed : {"", "0", "1", "\"", " ", ",", "00"}) {
        auto edited = lines;
        edited[i].replace(k, 1, typed);
        expectSeen(edited);
      }
    }
    for (std::size_t k = 0; k < lines.size(); ++k) {
      auto edited = lines;
      edited.insert(edited.begin() + static_cast<std::ptrdiff_t>(k), lines[i]);
      expectSeen(edited);
      edited = lines;
      edited[k] = lines[i];
      expectSeen(edited);
      edited = lines;
      std::swap(edited[k], edited[i]);
      expectSeen(edited);
    }
    auto edited = lines;
    edited.erase(edited.begin() + static_cast<std::ptrdiff_t>(i));
    expectSeen(edited);
  }
}

TEST(BackupFileTest, NoEditOfAWholeHousePassesUnseen) {
  const std::vector<std::string> lines = split(wholeHouse());
  std::mt19937 random(20240304);  // NOLINT(cert-msc51-cpp): the same edits each time
  for (int round = 0; round < 32; ++round) {
    auto edited = lines;
    const std::size_t line = random() % lines.size();
    const std::size_t other = random() % lines.size();
    switch (round % 4) {
      case 0:
        edited[line][random() % edited[line].size()] = static_cast<char>('0' + random() % 10);
        break;
      case 1:
        edited.erase(edited.begin() + static_cast<std::ptrdiff_t>(line));
        break;
      case 2:
        edited.insert(edited.begin() + static_cast<std::ptrdiff_t>(line), lines[other]);
        break;
      default:
        edited[line] = lines[other];
    }
    const std::string text = join(edited);
    EXPECT_TRUE(text == wholeHouse() || !passesUnseen(text)) << "line " << line << ", " << lines[line];
  }
}

TEST(BackupFileTest, SaysWhatCannotBe) {
  const std::string zeros(32, '0');
  const auto line = [&](const char* key) { return "\"" + std::string(key) + "\": \"" + zeros + "\""; };
  const std::size_t count = parseBackup(wholeHouse()).lines.size();
  const auto house = [&](const std::string& from, const std::string& to, int more = 0) {
    const std::string text = with(wholeHouse(), from, to);
    const std::string lines = "\"lines\": ";
    return refusal(
        with(text, lines + std::to_string(count), lines + std::to_string(static_cast<int>(count) + more)));
  };
  const std::pair<std::string, std::string> rows[] = {
      {refusal(with(smallFile, "\"lines\": 3", "\"lines\": 4")), "it should have 4 lines and has 3"},
      {refusal(with(smallFile, "\"0500\"", "\"0510\"")), "\"0510\" stands there twice"},
      {refusal(with(smallFile, "\"0500\"", "\"050\"")), "\"0\" is no pair of hexadecimal digits"},
      {refusal(with(smallFile, "\"0500\"", "\"6400\"")),
       "line V 6400 has a value at byte 1, which belongs to nothing"},
      {refusal(with(smallFile, "\"0500\": \"0005", "\"6400\": \"0000")), "line V 6400 belongs to nothing"},
      {refusal(with(smallFile, "\"version\": 2", "\"version\": 3")), "its version is not known here"},
      {refusal(std::string(100'000, '[')), "it is nested more than 64 deep"},
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
