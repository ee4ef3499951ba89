#include <gtest/gtest.h>

#include "cli/tool.h"

/// The examples that have a system save a house every night: their command lines run as they stand there, but
/// for the folder.
namespace velk::cli {
namespace {

const std::string packaging = VELK_TESTS_DIR "/../packaging/";

std::string between(const std::string& text, const std::string& start, const std::string& end) {
  const auto at = text.find(start);
  EXPECT_NE(at, std::string::npos) << start;
  if (at == std::string::npos) return {};
  return text.substr(at + start.size(), text.find(end, at + start.size()) - at - start.size());
}

std::string replaced(std::string text, const std::string& part, const std::string& other) {
  EXPECT_NE(text.find(part), std::string::npos) << text;
  return text.replace(text.find(part), part.size(), other);
}

void expectSeries(const std::string& command) {
  const Ended first = shell("VELK_LINK=simulate: " + command);
  EXPECT_EQ(first.status, 0) << command << first.complaint;
  EXPECT_EQ(first.text + first.complaint, "");
  const Ended second = shell("VELK_LINK=simulate: " + command);
  EXPECT_EQ(second.status, 6) << command;
  EXPECT_EQ(second.text + second.complaint, "");
}

TEST(Timer, ItsServiceSavesTheHouse) {
  const Folder folder;
  const std::string unit = contentOf(packaging + "systemd/velk-backup.service");
  EXPECT_NE(unit.find("\nSuccessExitStatus=6\n"), std::string::npos);
  const std::string line = between(unit, "\nExecStart=/usr/bin/", "\n");
  expectSeries(replaced(line, "/var/lib/velk", folder.path));
}

TEST(Timer, TheSystemTakesItsUnits) {
  const Folder folder;
  if (shell("systemd-analyze --version").status != 0) GTEST_SKIP() << "there is no systemd here";
  folder.put("velk-backup.service",
             replaced(contentOf(packaging + "systemd/velk-backup.service"), "/usr/bin/", VELK_BIN_DIR "/"));
  folder.put("velk-backup.timer", contentOf(packaging + "systemd/velk-backup.timer"));
  const Ended ended = shell("cd " + folder.path +
                            " && systemd-analyze verify --man=no ./velk-backup.timer ./velk-backup.service");
  EXPECT_EQ(ended.status, 0) << ended.text << ended.complaint;
  EXPECT_FALSE(ended.tells("velk-backup")) << ended.complaint;
}

TEST(Timer, TheTaskOfWindowsSavesTheHouse) {
  const Folder folder;
  const std::string script = contentOf(packaging + "windows/backup-task.cmd");
  const std::string line = between(script, "/TR \"cmd /c ", "\"\r\n");
  expectSeries(replaced(line, R"(\"%LOCALAPPDATA%\VelkCom\backups\")", folder.path));
}

}  // namespace
}  // namespace velk::cli
