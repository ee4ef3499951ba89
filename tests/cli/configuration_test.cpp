#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cli/tool.h"

namespace velk::cli {
namespace {

using Json = nlohmann::json;

Json json(Words words) {
  words.insert(words.end(), {"--simulate", "--json"});
  const Ended ended = velk(std::move(words));
  EXPECT_EQ(ended.status, 0);
  return Json::parse(ended.text, nullptr, false);
}

TEST(ConfigurationTest, TakesTheLinkFromTheEnvironment) {
  Tool simulator("velk-sim", {"--tcp", "0", "--fast", "--password", "a&b", "--for", "600"});
  const std::string tcp = behind(simulator.line(), "tcp Q ");
  const std::string fast = behind(simulator.line(), "fast ");
  EXPECT_EQ(velk({"outputs"}).status, 2) << "there is no link";
  for (const std::string& link :
       {"tcp://" + tcp + "?password=a\\x26b&address=2", "serial:" + fast + "?fast&baud=9600"}) {
    setenv("VELK_LINK", link.c_str(), 1);
    const auto status = Json::parse(velk({"status", "--json"}).text, nullptr, false);
    EXPECT_EQ(status["firmware"]["kind"], 3) << link;
    EXPECT_EQ(status["kind"], link.front() == 't' ? "Q" : "fast");
    EXPECT_EQ(status["link"].get<std::string>().find("a\\x26b"), std::string::npos) << "no password is shown";
  }
  for (const char* const wrong :
       {"tcp:x", "tcp://", "tcp://h:1?fast", "serial:x?baud=0", "simulate:x", "x"}) {
    setenv("VELK_LINK", wrong, 1);
    EXPECT_EQ(velk({"outputs"}).status, 2) << wrong;
  }
  unsetenv("VELK_LINK");
}

TEST(ConfigurationTest, ShowsThingsAsPeopleNameThem) {
  EXPECT_NE(velk({"outputs", "--simulate"}).text.find("\n5       Hall ceiling      T1    timer 1\n"),
            std::string::npos);
  EXPECT_EQ(velk({"switch-times", "--simulate"}).text,
            "Block  Time   Days      Switches\n"
            "0      07:30  Mon-Fri   output 3: 255 2; output 7: 0 4\n"
            "1      22:45  Sat, Sun  action 101.2\n");
  EXPECT_EQ(velk({"simulation", "--simulate"}).text,
            "Day     Time      Event\n"
            "Monday  18:15:30  output 3: 255 2\n"
            "Monday  18:42:05  output 5: 0 2\n");
  EXPECT_EQ(velk({"preset", "--simulate", "2"}).text,
            "preset 2 Evening: delay 10 and 40, in the simulation\n"
            "Record  Bytes\n3       3 255 2 0\n4       5 30 2 0\n5       7 0 4 2\n");
  EXPECT_NE(
      velk({"links", "--simulate"}).text.find("31.3    output 11    Awning           0, 1        falling\n"),
      std::string::npos);
  const Ended modules = velk({"modules", "--simulate", "123456", "090500", "654321", "100100", "--json"});
  EXPECT_EQ(modules.status, 1) << "two do not answer";
  EXPECT_EQ(Json::parse(modules.text, nullptr, false).size(), 2U) << "the others are shown";
  const std::string complaint = complaintOf({"modules", "--simulate", "123456", "090500", "654321"});
  EXPECT_NE(complaint.find("reading module 123456"), std::string::npos) << complaint;
  EXPECT_NE(complaint.find("reading module 654321"), std::string::npos) << complaint;
}

TEST(ConfigurationTest, PrintsJson) {
  EXPECT_EQ(json({"outputs"}).size(), 20U);
  EXPECT_EQ(json({"output", "5"})["items"][4]["value"], "M");
  EXPECT_EQ(json({"links"})[3]["source"], 31);
  EXPECT_EQ(json({"presets"})[3]["text"], "Holiday");
  EXPECT_EQ(json({"preset", "2"})["records"][0]["bytes"][1], 255);
  EXPECT_EQ(json({"switch-times"})[0]["days"].size(), 5U);
  EXPECT_EQ(json({"simulation"})[0]["time"], "18:15:30");
  EXPECT_EQ(json({"modules", "090500"})[0]["model"], "MT007/500VA");
  EXPECT_EQ(json({"week"})["marks"].size(), 9U);
  EXPECT_EQ(json({"clock", "set"})["after"]["controller"]["date"], json({"clock"})["computer"]["date"]);
}

TEST(ConfigurationTest, SetsOutputs) {
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  const auto set = [&](Words words) {
    words.insert(words.begin(), {"output", "--tcp", link, "--json"});
    const Ended ended = velk(std::move(words));
    EXPECT_EQ(ended.status, 0);
    return Json::parse(ended.text, nullptr, false);
  };
  EXPECT_EQ(set({"16", "set", "RC", "3=7"})["items"][3]["value"], 7) << "an odd item of a pair";
  EXPECT_EQ(set({"6", "set", "RO"})["mode"], "RO") << "with its marker";
  const Json timer = set({"5", "set", "T2", "4=S", "9=200"});
  EXPECT_EQ(timer["mode"], "T2");
  EXPECT_EQ(timer["items"][4]["value"], "S");
  EXPECT_EQ(timer["items"][3]["value"], 30) << "items that are not given stay";
  for (const Words& wrong :
       {Words{"5", "set", "XX"}, Words{"5", "set", "T1", "12=1"}, Words{"5", "set", "T1", "4=5"},
        Words{"5", "set", "T1", "1=16"}, Words{"5", "set", "T1", "x"}, Words{"5", "T1"}, Words{"0"}}) {
    Words words = wrong;
    words.insert(words.begin(), {"output", "--tcp", link});
    EXPECT_EQ(velk(words).status, 2) << testing::PrintToString(wrong);
  }
  EXPECT_EQ(set({"5"}), timer) << "nothing was written";
}

/// The component takes a roller for a dimmer when it does not learn of its marker.
TEST(ConfigurationTest, ALostReplyMakesNoDimmerOfARoller) {
  // The markers that are read for the mode, for the mode with the items, and with the items themselves.
  for (const char* const fault : {"header@2", "header@5", "header@8"}) {
    Tool simulator("velk-sim", {"--tcp", "0", "--fault", fault, "--for", "600"});
    const std::string link = behind(simulator.line(), "tcp Q ");
    const Ended ended = velk({"output", "--tcp", link, "--json", "7", "set", "RO", "1=4"});
    EXPECT_EQ(ended.status, 0) << fault;
    const Json output = Json::parse(ended.text, nullptr, false);
    EXPECT_EQ(output["mode"], "RO") << fault;
    EXPECT_EQ(output["items"][1]["value"], 4) << fault;
    EXPECT_EQ(output["items"][4]["value"], 25) << fault << ", as it was";
  }
}

/// The mailbox for modules ends with the first byte of link 0.0.
TEST(ConfigurationTest, TheMailboxIsNoLink) {
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  const auto write = [&](const char* offset, const char* byte) {
    return call({"--tcp", link, "WriteCom", "1", "0", offset, "V", byte}).status;
  };
  const auto shows = [&] {
    const bool listed = velk({"links", "--tcp", link}).text.find("\n0.0 ") != std::string::npos;
    const auto week = Json::parse(velk({"week", "--tcp", link, "--json"}).text, nullptr, false);
    EXPECT_EQ(week["links"].size(), listed ? 5U : 4U);
    return listed;
  };
  ASSERT_EQ(velk({"modules", "--tcp", link, "090500"}).status, 0);
  EXPECT_FALSE(shows()) << "a module's byte 7";
  ASSERT_EQ(write("31", "\\x85"), 0);
  EXPECT_FALSE(shows()) << "one that looks like output 5";
  ASSERT_EQ(write("254", "\\xee"), 0);
  EXPECT_FALSE(shows()) << "edges of the other links";
  for (const char* const edges : {"\\x10", "\\x01"}) {
    ASSERT_EQ(write("254", edges), 0);
    EXPECT_TRUE(shows()) << edges;
  }
  ASSERT_EQ(write("254", "\\x00"), 0);
  ASSERT_EQ(write("32", "\\x01"), 0);
  EXPECT_TRUE(shows()) << "parameters";
}

TEST(ConfigurationTest, TellsWhenTheClockIsHeld) {
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  const auto held = [&](const Words& words) {
    Words all = words;
    all.insert(all.end(), {"--tcp", link});
    return velk(all).text.find("; the clock is held: it stands still until \"velk clock set\"") !=
           std::string::npos;
  };
  EXPECT_FALSE(held({"clock"}));
  for (const char* const offset : {"247", "248"}) {
    ASSERT_EQ(call({"--tcp", link, "WriteCom", "1", "255", offset, "V", "\\xff"}).status, 0);
    EXPECT_TRUE(held({"clock"})) << offset;
    EXPECT_TRUE(held({"status"})) << offset;
    EXPECT_TRUE(Json::parse(velk({"clock", "--json", "--tcp", link}).text)["held"]);
    ASSERT_EQ(call({"--tcp", link, "WriteCom", "1", "255", offset, "V", "\\x00"}).status, 0);
  }
  EXPECT_FALSE(held({"clock"}));

  // Two requests read the clock, two hold it and the third of the update writes the time.
  Tool refusing("velk-sim", {"--tcp", "0", "--fault", "status=9@5", "--for", "600"});
  const std::string other = behind(refusing.line(), "tcp Q ");
  const std::string complaint = complaintOf({"clock", "set", "--tcp", other});
  EXPECT_NE(complaint.find("setting the clock: 9 (status 9 of the controller); the clock is held"),
            std::string::npos)
      << complaint;
}

TEST(ConfigurationTest, TheLinkThatIsPrintedOpensTheSameOne) {
  Tool simulator("velk-sim", {"--fast", "--baud", "19200", "--for", "600"});
  const std::string device = behind(simulator.line(), "fast ");
  const auto link = [](Words words) {
    words.insert(words.begin(), {"status", "--json"});
    return Json::parse(velk(std::move(words)).text, nullptr, false)["link"].get<std::string>();
  };
  const std::string text = "serial:" + device + "?fast&baud=19200&address=2";
  EXPECT_EQ(link({"--serial", device, "--fast", "--baud", "19200"}), text);
  EXPECT_EQ(link({"--link", text}), text);
}

TEST(ConfigurationTest, DrawsTheWeek) {
  const std::string file = testing::TempDir() + "velk-week-" + std::to_string(getpid());
  const std::string grid = velk({"week", "--simulate"}).text;
  EXPECT_NE(grid.find("Mon |               #                    ..          |"), std::string::npos) << grid;
  EXPECT_EQ(velk({"week", "--simulate", "--html", file}).status, 0);
  std::ifstream in(file);
  const std::string page((std::istreambuf_iterator<char>(in)), {});
  for (const char* const part : {"<svg", "07:30", "output 5 Hall ceiling", "name=\"viewport\""}) {
    EXPECT_NE(page.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(page.find("src="), std::string::npos) << "needs no other file";
  std::filesystem::remove(file);
}

TEST(ConfigurationTest, EveryCommandHasExamplesAndACompletion) {
  const std::string script = velk({"completion", "bash"}).text;
  const std::string help = velk({"--help"}).text;
  for (const char* const command :
       {"status",       "outputs",    "output",  "clock",      "links",    "presets", "preset",
        "switch-times", "simulation", "modules", "ir-text",    "language", "backup",  "diff",
        "restore",      "week",       "doctor",  "completion", "call",     "methods"}) {
    EXPECT_NE(help.find(std::string("\n  ") + command + " "), std::string::npos) << command;
    EXPECT_NE(velk({command, "--help"}).text.find("Examples:\n"), std::string::npos) << command;
    EXPECT_NE(script.find(std::string("    ") + command + ") words="), std::string::npos) << command;
  }
}

}  // namespace
}  // namespace velk::cli
