#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cli/tool.h"
#include "platform/devices.h"
#include "support/real_peers.h"

/// What people see: texts, questions and progress on a terminal.
namespace velk::cli {
namespace {

using Json = nlohmann::json;

/// Runs velk on a terminal of its own, where `answer` is typed at a question. Returns what the terminal
/// shows.
Ended onTerminal(Words words, const std::string& answer = {}) {
  int terminal = -1;
  const pid_t pid = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (pid == 0) {
    words.insert(words.begin(), std::string(VELK_BIN_DIR) + "/velk");
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  const platform::Fd fd(terminal);
  std::string text;
  std::array<char, 4096> buffer{};
  pollfd watched{.fd = terminal, .events = POLLIN, .revents = 0};
  bool asked = false;
  while (poll(&watched, 1, patience) > 0) {
    const auto n = read(terminal, buffer.data(), buffer.size());
    if (n <= 0) break;
    text.append(buffer.data(), static_cast<std::size_t>(n));
    if (!asked && text.find("[y/N] ") != std::string::npos) {
      asked = true;
      EXPECT_EQ(write(terminal, answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
    }
  }
  int status = 0;
  waitpid(pid, &status, 0);
  return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1, .text = text};
}

bool shows(const Ended& ended, const std::string& part) {
  return ended.text.find(part) != std::string::npos;
}

class Terminal : public testing::Test {
 protected:
  ~Terminal() override {
    std::filesystem::remove(empty_);
    std::filesystem::remove(backup());
  }

  [[nodiscard]] std::string backup() const { return empty_ + ".json"; }

 private:
  static std::string emptyImage() {
    std::string name = testing::TempDir() + "velk-terminal-" + std::to_string(getpid());
    std::ofstream(name) << "velk-memory 1\nend\n";
    return name;
  }

  std::string empty_ = emptyImage();

 protected:
  Tool simulator{"velk-sim", {"--tcp", "0", "--image", empty_, "--for", "600"}};
  std::string link = behind(simulator.line(), "tcp Q ");
};

TEST_F(Terminal, ARestorationAsksBeforeItWrites) {
  ASSERT_EQ(velk({"backup", "--simulate", backup()}).status, 0);
  const Words restore{"restore", "--tcp", link, "--only", "presets", backup()};
  for (const char* const no : {"n\n", "\n", "yesterday\n"}) {
    EXPECT_EQ(onTerminal(restore, no).status, 1) << no;
  }
  EXPECT_EQ(velk({"preset", "--tcp", link, "2", "--json"}).text.find("Evening"), std::string::npos)
      << "nothing was written";
  const Ended written = onTerminal(restore, "y\n");
  EXPECT_EQ(written.status, 0);
  EXPECT_TRUE(shows(written, "things written and read back")) << written.text;
  EXPECT_NE(velk({"preset", "--tcp", link, "2", "--json"}).text.find("Evening"), std::string::npos);
}

TEST_F(Terminal, ABackupShowsHowFarItIs) {
  // The bar is drawn when a tenth of a second has passed: the second reply comes later than that.
  Tool slow("velk-sim", {"--tcp", "0", "--fault", "late=300@2", "--for", "600"});
  const std::string to = behind(slow.line(), "tcp Q ");
  const Ended ended = onTerminal({"backup", "--tcp", to, backup()});
  EXPECT_EQ(ended.status, 0);
  EXPECT_TRUE(shows(ended, " % ")) << ended.text;
  EXPECT_TRUE(shows(ended, " s left")) << ended.text;
  EXPECT_EQ(complaintOf({"backup", "--tcp", to, backup()}).find(" % "), std::string::npos)
      << "but not in a file or a pipe";
}

TEST_F(Terminal, HeadingsAreBoldUnlessUnwanted) {
  EXPECT_TRUE(shows(onTerminal({"presets", "--simulate"}), "\x1b[1mPreset"));
  setenv("NO_COLOR", "1", 1);
  EXPECT_FALSE(shows(onTerminal({"presets", "--simulate"}), "\x1b"));
  unsetenv("NO_COLOR");
  EXPECT_EQ(velk({"presets", "--simulate"}).text.find('\x1b'), std::string::npos);
}

TEST_F(Terminal, AnEmptyControllerHasNothingToList) {
  const std::vector<std::pair<std::string, std::string>> rows{{"outputs", "no output has a mode\n"},
                                                              {"links", "there are no links\n"},
                                                              {"presets", "there are no presets\n"}};
  for (const auto& [command, text] : rows) {
    EXPECT_EQ(velk({command, "--tcp", link}).text, text);
    EXPECT_EQ(Json::parse(velk({command, "--tcp", link, "--json"}).text), Json::array()) << command;
  }
  EXPECT_EQ(velk({"preset", "--tcp", link, "2"}).text.substr(0, 9), "preset 2:");
}

TEST_F(Terminal, ClockDeviationsInWords) {
  // Seconds to years from their addresses on, as the controller keeps them: packed decimals.
  const auto set = [&](const std::string& clock) {
    return call({"--tcp", link, "WriteCom", "7", "255", "249", "V", clock}).status;
  };
  const std::vector<std::pair<std::string, std::string>> rows{
      {"\\x00\\x00\\x12\\x01\\x01\\x01\\x99", " s ahead"},
      {"\\x00\\x00\\x12\\x01\\x01\\x01\\x01", " s behind"},
      {"\\x00\\x00\\x12\\x01\\x31\\x02\\x25", "unknown: the controller's date does not exist"},
  };
  for (const auto& [clock, words] : rows) {
    ASSERT_EQ(set(clock), 0);
    const Ended shown = velk({"clock", "--tcp", link});
    EXPECT_TRUE(shows(shown, words)) << shown.text;
    const Json json = Json::parse(velk({"clock", "--tcp", link, "--json"}).text);
    EXPECT_EQ(json["seconds_ahead"].is_null(), words.front() == 'u') << clock;
  }
  ASSERT_EQ(set("\\x00\\x00\\x12\\x00\\x31\\x02\\x25"), 0);
  EXPECT_TRUE(shows(velk({"clock", "--tcp", link}), "day -1")) << "a weekday that is none";
  const Ended now = velk({"clock", "set", "--tcp", link});
  EXPECT_TRUE(shows(now, "set; deviation now: ")) << now.text;
  EXPECT_FALSE(shows(velk({"clock", "--tcp", link}), " d ")) << "it is today's date";
}

TEST_F(Terminal, StatusAndLanguage) {
  const Ended status = velk({"status", "--tcp", link});
  for (const char* const part : {"interface   Ethernet, kind Q, which takes a password\n", "round trip  min ",
                                 "kind 0, further 0 0 0"}) {
    EXPECT_TRUE(shows(status, part)) << status.text;
  }
  EXPECT_EQ(velk({"language", "--tcp", link, "E", "--json"}).text, "{\"language\":\"E\"}\n");
  EXPECT_EQ(velk({"language", "--tcp", link, "X"}).status, 2);
}

TEST_F(Terminal, ThingsThatTheHouseDoesNotHave) {
  const auto write = [&](Words words) {
    words.insert(words.begin(), {"--tcp", link});
    return call(std::move(words)).status;
  };
  EXPECT_EQ(velk({"output", "--tcp", link, "5"}).text, "output 5: no mode\n");
  ASSERT_EQ(write({"WriteCom", "16", "5", "64", "V", "<Bath & \\x22Spa\\x22>\\x00\\x00"}), 0);
  ASSERT_EQ(write({"Ctl_Param", "W", "5", "T1", "Aantal=0"}), 0);
  EXPECT_EQ(velk({"output", "--tcp", link, "5"}).text.substr(0, 47),
            "output 5 <Bath & \"Spa\">: T1 timer 1\nItem  Place");

  ASSERT_EQ(write({"Ctl_Soft", "W", "30", "1", "105", "I", "0", "0", "False", "False"}), 0);
  ASSERT_EQ(write({"Ctl_Soft", "W", "30", "2", "5", "O", "0", "0", "True", "True"}), 0);
  const std::string links = velk({"links", "--tcp", link}).text;
  EXPECT_NE(links.find("\n30.1    input 105"), std::string::npos) << links;
  EXPECT_EQ(Json::parse(velk({"links", "--tcp", link, "--json"}).text)[0].size(), 4U) << "without edges";

  ASSERT_EQ(write({"SwitchTime", "W", "5", "127", "6", "5", "\\x05\\x01\\x02"}), 0);
  ASSERT_EQ(write({"SwitchTime", "W", "6", "0", "7", "6", ""}), 0);
  ASSERT_EQ(write({"SwitchTime", "W", "7", "43", "8", "7", "\\x05\\x01\\x02"}), 0);
  const std::string times = velk({"switch-times", "--tcp", link}).text;
  for (const char* const row : {"\n5      06:05  every day           output 5: 1 2\n",
                                "\n6      07:06  no day              nothing\n",
                                "\n7      08:07  Mon, Tue, Thu, Sat  output 5: 1 2\n"}) {
    EXPECT_NE(times.find(row), std::string::npos) << row << times;
  }

  EXPECT_EQ(velk({"week", "--tcp", link, "--svg", backup()}).text, "");
  std::ifstream in(backup());
  const std::string picture((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NE(picture.find("output 5 &lt;Bath &amp; &quot;Spa&quot;>"), std::string::npos)
      << "names are no markup";
}

TEST_F(Terminal, InfraredTextsAndModules) {
  EXPECT_EQ(velk({"ir-text", "--tcp", link, "3", "a\\xe9", "--json"}).text,
            "{\"text\":3,\"value\":\"a\u00e9\"}\n");
  EXPECT_EQ(velk({"ir-text", "--tcp", link, "3", "seventeen letters"}).status, 2);
  EXPECT_EQ(velk({"modules", "--simulate", "090500"}).text.substr(0, 35),
            "Serial  Model        CPU  Firmware ");
}

TEST_F(Terminal, BackupsThatAreDamagedOrOfAnotherLink) {
  const Ended made = velk({"backup", "--simulate", backup(), "--json"});
  EXPECT_GT(Json::parse(made.text)["lines"], 4000);
  std::ifstream in(backup());
  const Json good = Json::parse(in);
  const auto damaged = [&](const char* key, const Json& value) {
    Json json = good;
    json[key] = value;
    std::ofstream(backup()) << json;
    return velk({"restore", "--tcp", link, "--yes", backup()}).status;
  };
  EXPECT_EQ(damaged("complete", false), 5) << "an unfinished one";
  EXPECT_EQ(damaged("memory", 1), 5);
  EXPECT_EQ(damaged("version", 99), 5);
  EXPECT_EQ(damaged("format", "x"), 5);
}

TEST_F(Terminal, AFileChangedByHandIsAskedAboutBeforeTheLinkIsOpened) {
  std::string text = velk({"backup", "--simulate", "-"}).text;
  text.replace(text.find("\"0500\": \"0005"), 13, "\"0500\": \"0006");
  std::ofstream(backup()) << text;
  const Words restore{"restore", "--tcp", "127.0.0.1:1", backup()};
  EXPECT_EQ(onTerminal(restore, "n\n").status, 1);
  const Ended agreed = onTerminal(restore, "y\n");
  EXPECT_EQ(agreed.status, 4);
  EXPECT_TRUE(shows(agreed, "was changed after velk wrote it")) << agreed.text;
  EXPECT_EQ(onTerminal({"restore", "--tcp", "127.0.0.1:1", "--yes", backup()}).status, 2);
}

TEST_F(Terminal, APortIsServedOnce) {
  const std::string port = link.substr(link.rfind(':') + 1);
  EXPECT_EQ(Tool("velk-sim", {"--tcp", port}).wait(), 4);
}

/// A serial device that velk-sim is given, not one that it makes.
TEST(SimulatorLine, AnswersOnADevice) {
  for (const bool fast : {false, true}) {
    test::Pty line;
    const auto device = platform::mappedPort(test::Pty::number);
    Tool simulator("velk-sim", {fast ? "--fast" : "--echo", *device, "--baud", "19200", "--for", "600"});
    simulator.line();
    ASSERT_EQ(simulator.line(), "ready");
    const Bytes request = fast ? Bytes("*\x02\x02\x20\x05\x01#") : Bytes("*\x20\x05\x01");
    Bytes received;
    std::array<char, 64> buffer{};
    pollfd watched{.fd = line.far(), .events = POLLIN, .revents = 0};
    for (const char byte : request) {
      ASSERT_EQ(write(line.far(), &byte, 1), 1);
      if (!fast) {
        ASSERT_EQ(poll(&watched, 1, patience), 1);
        ASSERT_GE(read(line.far(), buffer.data(), 1), 1);
        EXPECT_EQ(buffer[0], byte) << "its echo";
      }
    }
    const std::size_t length = fast ? 9 : 2;
    while (received.size() < length && poll(&watched, 1, patience) == 1) {
      const auto n = read(line.far(), buffer.data(), buffer.size());
      if (n <= 0) break;
      received.append(buffer.data(), static_cast<std::size_t>(n));
    }
    EXPECT_EQ(received, fast ? request.substr(0, 6) + Bytes("\0\x05#", 3) : Bytes("\0\x05", 2));
    EXPECT_EQ(simulator.finish(), 0);
  }
}

}  // namespace
}  // namespace velk::cli
