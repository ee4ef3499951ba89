#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "cli/tool.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

/// A folder of its own for each test, and simulators in front of it.
class BackupTest : public testing::Test {
 protected:
  BackupTest() {
    fs::create_directories(folder_);
    std::ofstream(file("empty")) << "velk-memory 1\nend\n";
  }
  ~BackupTest() override { fs::remove_all(folder_); }

  [[nodiscard]] std::string file(const std::string& name) const { return folder_ + "/" + name; }

  static std::string linkOf(Tool& simulator) { return behind(simulator.line(), "tcp Q "); }

  [[nodiscard]] Tool emptyController(Words faults = {}) const {
    faults.insert(faults.end(), {"--image", file("empty"), "--for", "600"});
    return {"velk-sim", std::move(faults)};
  }

 private:
  std::string folder_ = testing::TempDir() + "velk-backup-" + std::to_string(getpid());
};

/// What `diff` prints between the lines of one thing.
bool has(const std::string& text, const std::string& line) {
  return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

TEST_F(BackupTest, SurvivesABrokenLinkAndRestoresToAnEmptyController) {
  Tool source("velk-sim", {"--tcp", "0", "--fault", "disconnect@2000", "--for", "600"});
  const std::string from = linkOf(source);
  const Words backup{"backup", "--tcp", from, file("a"), "--modules", "090500"};
  EXPECT_NE(velk(backup).status, 0);
  EXPECT_FALSE(fs::exists(file("a"))) << "a file is there when it is whole";
  EXPECT_TRUE(fs::exists(file("a.part")));
  EXPECT_NE(velk(backup).status, 0);
  EXPECT_EQ(velk(backup).status, 0) << "each call brings 2000 lines";
  EXPECT_FALSE(fs::exists(file("a.part")));

  // Reading an empty controller takes 7307 requests, so that each call breaks off while it writes.
  Tool target = emptyController({"--fault", "disconnect@7400"});
  const std::string to = linkOf(target);
  EXPECT_EQ(velk({"diff", "--simulate", file("a")}).status, 0);
  EXPECT_EQ(velk({"restore", "--tcp", to, file("a")}).status, 2) << "nobody can be asked";
  const Words restore{"restore", "--tcp", to, "--yes", file("a")};
  int calls = 1;
  while (velk(restore).status != 0 && calls < 9) ++calls;
  EXPECT_GT(calls, 1);
  EXPECT_LT(calls, 9);
  const Ended same = velk({"diff", "--tcp", to, file("a")});
  EXPECT_EQ(same.status, 0) << same.text;
}

TEST_F(BackupTest, TellsDifferencesInWords) {
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = linkOf(simulator);
  ASSERT_EQ(velk({"backup", "--tcp", link, file("a")}).status, 0);
  EXPECT_EQ(velk({"output", "--tcp", link, "5", "set", "DI"}).status, 0);
  EXPECT_EQ(velk({"output", "--tcp", link, "8", "set", "T2", "3=91"}).status, 0);
  EXPECT_EQ(call({"--tcp", link, "SwitchTime", "W", "0", "31", "8", "15", "\\x03\\xff\\x02"}).status, 0);
  EXPECT_EQ(call({"--tcp", link, "Ctl_Soft", "W", "30", "1", "4", "O", "1", "0", "0", "-1"}).status, 0);
  EXPECT_EQ(call({"--tcp", link, "Simulation", "W", "0", "18", ""}).status, 0);
  EXPECT_EQ(velk({"ir-text", "--tcp", link, "1", "Tuner"}).status, 0);
  EXPECT_EQ(call({"--tcp", link, "WriteCom", "1", "9", "200", "V", "\\x07"}).status, 0);
  const Ended words = velk({"diff", "--tcp", link, file("a")});
  EXPECT_EQ(words.status, 1);
  for (const char* const line :
       {"output 5: mode T1 -> DI", "output 8: item 3 90 -> 91", "output 9: byte 200 of page 9 0 -> 7",
        "switch time 0: time 07:30 -> 08:15, switches output 3: 255 2; output 7: 0 4 -> output 3: 255 2",
        "links of source 30: 30.1 destination output 3 -> output 4, 30.1 edges rising -> falling",
        "simulation of Monday 18:00: event 1 18:15:30 output 3: 255 2 -> (none), event 2 18:42:05 output 5: "
        "0 2 "
        "-> (none)",
        "infrared text 1: text Radio -> Tuner"}) {
    EXPECT_TRUE(has(words.text, line)) << line << "\nin\n" << words.text;
  }

  EXPECT_EQ(velk({"restore", "--tcp", link, "--dry-run", file("a")}).status, 0);
  EXPECT_EQ(velk({"diff", "--tcp", link, file("a")}).text, words.text) << "a dry run writes nothing";
  EXPECT_EQ(velk({"restore", "--tcp", link, "--yes", "--only", "outputs,links", file("a")}).status, 0);
  const auto rest = nlohmann::json::parse(velk({"diff", "--tcp", link, "--json", file("a")}).text);
  ASSERT_EQ(rest.size(), 3U);
  EXPECT_EQ(rest[0]["thing"], "switch time 0");

  ASSERT_EQ(velk({"backup", "--tcp", link, file("b")}).status, 0);
  EXPECT_EQ(velk({"diff", file("b"), file("b")}).status, 0);
  EXPECT_EQ(velk({"diff", file("a"), file("b"), "--only", "infrared"}).text,
            "infrared text 1: text Radio -> Tuner\n");
}

/// What was deleted lies behind the end mark still.
TEST_F(BackupTest, RestoresEventsOverWhatIsLeftOfOthers) {
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = linkOf(simulator);
  const auto record = [&](const std::string& data) {
    EXPECT_EQ(call({"--tcp", link, "Simulation", "W", "2", "3", "Data=" + data}).status, 0);
  };
  record(R"(\x0f\x1e\x05\x00\x02)");
  ASSERT_EQ(velk({"backup", "--tcp", link, file("a")}).status, 0);
  record(R"(\x0f\x1e\x05\x07\x02)");
  record("");
  EXPECT_EQ(velk({"restore", "--tcp", link, "--yes", file("a")}).status, 0);
  EXPECT_EQ(call({"--tcp", link, "Simulation", "R", "2", "3"}).text,
            "0  (done)\nData=\\x0f\\x1e\\x05\\x00\\x02\n");
}

TEST_F(BackupTest, RestoresModules) {
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = linkOf(simulator);
  ASSERT_EQ(velk({"backup", "--modules", "090500", "--tcp", link, file("a")}).status, 0);
  ASSERT_EQ(call({"--tcp", link, "Module", "W", "090500",
                  R"(\x05\x04\x06\x03\x07\x02\x08\x03\x00\x01\x02\x03\x04\x05\x06\x07)"})
                .status,
            0);
  const Ended differs = velk({"diff", "--tcp", link, file("a"), "--only", "modules"});
  EXPECT_EQ(differs.text.substr(0, 22), "module 090500: record ") << differs.text;
  EXPECT_EQ(velk({"restore", "--tcp", link, "--yes", file("a"), "--only", "outputs"}).text, "");
  EXPECT_EQ(velk({"restore", "--tcp", link, "--yes", "--only", "modules", file("a")}).status, 0);
  EXPECT_EQ(velk({"diff", "--tcp", link, file("a"), "--only", "modules"}).text, "");

  std::ifstream in(file("a"));
  auto backup = nlohmann::json::parse(in);
  backup["modules"][0]["firmware"] = "0.9";
  std::ofstream(file("b")) << backup;
  const Ended older =
      velk({"restore", "--tcp", link, "--yes", "--edited", "--json", "--only", "modules", file("b")});
  EXPECT_EQ(older.status, 0);
  const auto account = nlohmann::json::parse(older.text);
  EXPECT_EQ(account["differences"].size(), 1U) << "the firmware is told";
  EXPECT_EQ(account["written"].size(), 0U) << "and cannot be written";
}

/// 951500 reads selections that it has to be given in another way; 750000 reads what it cannot be given at
/// all.
TEST_F(BackupTest, RestoresModulesAsTheyWereAndLeavesOutWhatCannotBe) {
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = linkOf(simulator);
  // The first selection is none, which reads back as 9.
  std::string video = R"(\x05\x00\x06\x02\x07\x03\x08\x04)";
  for (int i = 0; i < 17; ++i) video += R"(\x00)";
  video += R"(\x01\x00\x02\x00\x03\x00)";
  ASSERT_EQ(call({"--tcp", link, "Module", "W", "951500", video + R"(\x04)"}).status, 0);
  const Words backup{"backup", "--modules", "951500,750000", "--tcp", link, file("a")};
  EXPECT_NE(complaintOf(backup).find("module 750000 is saved but cannot be restored: "), std::string::npos);
  ASSERT_EQ(call({"--tcp", link, "Module", "W", "951500", video + R"(\x01)"}).status, 0);
  ASSERT_EQ(call({"--tcp", link, "Module", "W", "750000", std::string(29, 'x')}).status, 0);

  const Words restore{"restore", "--tcp", link, "--yes", "--json", "--only", "modules", file("a")};
  const auto account = nlohmann::json::parse(velk(restore).text);
  EXPECT_EQ(account["written"], nlohmann::json({"module 951500"}));
  EXPECT_EQ(account["left_out"], nlohmann::json({"module 750000"}));
  EXPECT_EQ(account["failure"], nullptr);
  const std::string complaint =
      complaintOf({"restore", "--tcp", link, "--yes", "--only", "modules", file("a")});
  EXPECT_EQ(complaint.find("velk: module 750000 is left out: "), 0U) << complaint;
  EXPECT_TRUE(has(complaint, "velk: nothing to write")) << complaint;
}

TEST_F(BackupTest, ModulesDoNotDependOnTheOneBeforeThem) {
  const auto modules =
      nlohmann::json::parse(velk({"modules", "--simulate", "--json", "090500", "000001"}).text);
  EXPECT_EQ(modules[1]["record"], "05");
  EXPECT_EQ(modules[1]["known"], false);
}

TEST_F(BackupTest, ReadsOnlyWhatIsAskedFor) {
  ASSERT_EQ(velk({"backup", "--simulate", file("a")}).status, 0);
  // 64 infrared texts; the whole configuration takes thousands of requests.
  Tool simulator("velk-sim", {"--tcp", "0", "--fault", "disconnect@65-", "--for", "600"});
  const std::string link = linkOf(simulator);
  EXPECT_EQ(velk({"diff", "--tcp", link, "--only", "infrared", file("a")}).status, 0);
  EXPECT_EQ(velk({"restore", "--tcp", link, "--only", "modules", "--dry-run", file("a")}).status, 0);
  EXPECT_NE(velk({"diff", "--tcp", link, "--only", "infrared,settings", file("a")}).status, 0);
}

TEST_F(BackupTest, AnInterruptedRestorationGoesOn) {
  ASSERT_EQ(velk({"backup", "--simulate", file("a")}).status, 0);
  // The first write is request 4015. What follows takes some twenty seconds, so that the signal comes in
  // time.
  Tool simulator = emptyController({"--trace", "--fault", "late=100@4016-"});
  const std::string link = linkOf(simulator);
  Tool restore("velk", {"restore", "--tcp", link, "--yes", "--only", "outputs,presets", "--json", file("a")});
  ASSERT_TRUE(simulator.reaches("write"));
  EXPECT_EQ(restore.finish(SIGINT), 130);
  const auto account = nlohmann::json::parse(restore.all());
  EXPECT_EQ(account["failure"], "interrupted");
  EXPECT_FALSE(account["not_written"].empty());
  // Nobody reads the trace any more.
  EXPECT_EQ(simulator.finish(), 0);
}

TEST_F(BackupTest, TellsWhatARefusedRestorationDidNotWrite) {
  ASSERT_EQ(velk({"backup", "--simulate", file("a")}).status, 0);
  // Reading an empty controller takes at most 7307 requests; the writes follow.
  Tool simulator = emptyController({"--fault", "status=9@7320-"});
  const Ended ended = velk({"restore", "--tcp", linkOf(simulator), "--yes", "--json", file("a")});
  EXPECT_EQ(ended.status, 1);
  const auto account = nlohmann::json::parse(ended.text);
  EXPECT_EQ(account["written"].size() + account["not_written"].size(), account["differences"].size());
  EXPECT_FALSE(account["not_written"].empty());
  EXPECT_NE(account["failure"].get<std::string>().find("9 (status 9 of the controller)"), std::string::npos);
}

TEST_F(BackupTest, RefusesFilesThatAreNoBackups) {
  std::ofstream(file("text")) << "hello";
  std::ofstream(file("json")) << R"({"format":"velk-backup","version":2})";
  std::ofstream(file("array")) << "[]";
  std::ofstream(file("half"))
      << R"({"format":"velk-backup","version":1,"begun":"","link":"","complete":true,)"
         R"("memory":{"V":{"0501":"00"},"H":{},"H+":{}},"modules":[]})";
  for (const char* const name : {"text", "json", "array", "half", "nothing", "."}) {
    EXPECT_EQ(velk({"diff", file(name), file(name)}).status, 5) << name;
  }
  EXPECT_EQ(velk({"backup", "--simulate", "/nowhere/file"}).status, 5);
  EXPECT_EQ(velk({"diff", "--simulate", file("text"), "--only", "nothing"}).status, 2);
}

/// Nothing listens at port 1: a command that came so far would end with 4.
TEST_F(BackupTest, RefusesBeforeTheFirstRequest) {
  ASSERT_EQ(velk({"backup", "--simulate", file("a")}).status, 0);
  fs::create_directory(file("b.part.1"));
  fs::permissions(file("a"), fs::perms{0600});
  const std::pair<Words, int> rows[] = {
      {{"backup", "/nowhere/file"}, 5},
      {{"backup", file(std::string(300, 'n'))}, 5},
      {{"backup", file(std::string(251, 'n'))}, 5},  // FILE.part would be too long
      {{"backup", file(std::string(250, 'n'))}, 4},
      {{"backup", file("a")}, 4},
      {{"week", "--svg", "/nowhere/file"}, 5},
      {{"restore", file("a")}, 2},  // nobody can be asked
      {{"restore", "--yes", file("a")}, 4},
      {{"restore", "--dry-run", file("a")}, 4},
      {{"outputs", "--password", "12345"}, 2},
      {{"outputs", "--password", "1234"}, 4},
  };
  for (const auto& [words, status] : rows) {
    Words all = words;
    all.insert(all.end(), {"--tcp", "127.0.0.1:1"});
    EXPECT_EQ(velk(all).status, status) << testing::PrintToString(words);
  }
  EXPECT_EQ(velk({"outputs", "--link", "tcp://127.0.0.1:1?password=12345"}).status, 2);
  EXPECT_EQ(velk({"diff", file("a"), file("a")}).status, 0) << "the file is as it was";
}

TEST_F(BackupTest, AFileChangedByHandIsRestoredOnlyWhenThatIsMeant) {
  const std::string text = velk({"backup", "--simulate", "-"}).text;
  const auto changed = [&](const std::string& from, const std::string& to) {
    std::string other = text;
    other.replace(other.find(from), from.size(), to);
    return other;
  };
  std::ofstream(file("intact")) << text;
  std::ofstream(file("edited")) << changed("\"0500\": \"0005", "\"0500\": \"0006");
  std::ofstream(file("mode")) << changed("\"0500\": \"0005", "\"0500\": \"0016");
  std::ofstream(file("old"))
      << R"({"format":"velk-backup","version":1,"begun":"","link":"","complete":true,)"
         R"("memory":{"V":{"0500":"00060000000000000000000000000000"},"H":{},"H+":{}},)"
         R"("modules":[]})";
  Tool simulator = emptyController();
  const std::string link = linkOf(simulator);
  const auto restore = [&](const char* name, Words more) {
    more.insert(more.begin(), {"restore", "--tcp", link, "--only", "outputs", file(name)});
    return velk(more).status;
  };
  const auto modeOf5 = [&] { return call({"--tcp", link, "ReadCom", "1", "5", "1", "V"}).text.substr(4, 4); };
  for (const char* const name : {"edited", "old"}) {
    EXPECT_EQ(restore(name, {"--yes"}), 2) << name;
    EXPECT_EQ(restore(name, {}), 2) << name;
    EXPECT_EQ(restore(name, {"--edited"}), 2) << name << ": nobody can be asked";
  }
  EXPECT_EQ(restore("old", {"--dry-run"}), 2);
  EXPECT_EQ(restore("edited", {"--dry-run"}), 0);
  EXPECT_EQ(restore("mode", {"--yes", "--edited"}), 5);
  EXPECT_EQ(modeOf5(), "\\x00") << "nothing was written";
  for (const char* const name : {"edited", "old"}) {
    EXPECT_EQ(velk({"diff", file(name), file("intact"), "--only", "infrared"}).status, name[0] == 'o')
        << name;
    EXPECT_NE(complaintOf({"diff", file(name), file("intact")}), "") << name;
    EXPECT_EQ(restore(name, {"--yes", "--edited"}), 0) << name;
    EXPECT_EQ(modeOf5(), "\\x06") << name;
    EXPECT_EQ(restore("intact", {"--yes"}), 0);
    EXPECT_EQ(modeOf5(), "\\x05") << name;
  }
}

TEST_F(BackupTest, APartIsContinuedOverAnotherLinkToTheSameController) {
  Tool source("velk-sim", {"--tcp", "0", "--tcp-s", "0", "--fault", "disconnect@2000", "--for", "600"});
  EXPECT_NE(velk({"backup", "--tcp", linkOf(source), file("a")}).status, 0);
  Tool moved("velk-sim", {"--tcp-s", "0", "--for", "600"});
  const std::string device = behind(moved.line(), "tcp S ");
  // Modules leave something in the mailbox, which the backup has as well.
  EXPECT_EQ(velk({"modules", "--tcp", device, "090500"}).status, 0);
  const auto linesOf = [](Words backup) {
    backup.insert(backup.begin(), {"backup", "--json"});
    return nlohmann::json::parse(velk(std::move(backup)).text)["lines"].get<int>();
  };
  EXPECT_EQ(linesOf({"--tcp", device, file("a")}), linesOf({"--simulate", file("b")}) - 1999);
  EXPECT_FALSE(fs::exists(file("a.part.1")));
  EXPECT_EQ(velk({"diff", "--simulate", file("a")}).status, 0);
}

TEST_F(BackupTest, WhatWasReadIsKeptEveryFewSeconds) {
  Tool source("velk-sim", {"--tcp", "0", "--fault", "late=5@*", "--for", "600"});
  const std::string link = linkOf(source);
  Tool backup("velk", {"backup", "--tcp", link, file("a")});
  // At the start it is there for a moment, which tells that it can be.
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (std::ifstream(file("a.part")).peek() == EOF && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_EQ(backup.finish(SIGKILL), -1);
  Tool quick("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string complaint = complaintOf({"backup", "--tcp", linkOf(quick), file("a")});
  EXPECT_EQ(complaint.substr(0, 32), "velk: continuing the backup begu") << complaint;
  EXPECT_EQ(velk({"diff", "--simulate", file("a")}).status, 0);
}

TEST_F(BackupTest, APartThatCannotBeBelievedIsPutAside) {
  const auto makePart = [&] {
    Tool source("velk-sim", {"--tcp", "0", "--fault", "disconnect@100", "--for", "600"});
    EXPECT_NE(velk({"backup", "--tcp", linkOf(source), file("a")}).status, 0);
  };
  makePart();
  std::string part = (std::stringstream() << std::ifstream(file("a.part")).rdbuf()).str();
  part.replace(part.find("\"0100\": \"000b"), 13, "\"0100\": \"000c");
  const std::pair<std::string, std::string> rows[] = {
      {part, "was changed after velk wrote it"},
      {part.substr(0, part.size() / 2), "parse error"},
      {velk({"backup", "--simulate", "-"}).text, "is not unfinished"},
  };
  for (const auto& [text, reason] : rows) {
    std::ofstream(file("a.part")) << text;
    const std::string said = complaintOf({"backup", "--simulate", file("a")});
    EXPECT_NE(said.find(reason), std::string::npos) << said;
    EXPECT_NE(said.find("it is kept as " + file("a.part.")), std::string::npos) << said;
    EXPECT_EQ(velk({"diff", "--simulate", file("a")}).status, 0) << "nothing of it is in the backup";
    EXPECT_FALSE(fs::exists(file("a.part")));
  }
  EXPECT_TRUE(fs::exists(file("a.part.3")));
  makePart();
  Tool other = emptyController();
  EXPECT_NE(complaintOf({"backup", "--tcp", linkOf(other), file("a")}).find("of another controller"),
            std::string::npos);
  EXPECT_TRUE(fs::exists(file("a.part.4")));

  Tool source("velk-sim", {"--tcp", "0", "--fault", "disconnect@100", "--for", "600"});
  const std::string link = linkOf(source);
  EXPECT_NE(velk({"backup", "--tcp", link, file("a")}).status, 0);
  EXPECT_EQ(call({"--tcp", link, "WriteCom", "1", "1", "2", "V", "\\x07"}).status, 0);
  EXPECT_NE(complaintOf({"backup", "--tcp", link, file("a")}).find("or this one was changed since"),
            std::string::npos)
      << "over the same link, too";
  fs::remove(file("a.part"));
  fs::create_directory(file("a.part"));
  EXPECT_EQ(velk({"backup", "--simulate", file("a")}).status, 0);
}

}  // namespace
}  // namespace velk::cli
