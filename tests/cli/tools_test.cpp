#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "cli/tool.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

TEST(VelkTest, PrintsTheResultAndWhatWasWrittenBack) {
  const Ended read = call({"--simulate", "Ctl_Param", "R", "5", "Aantal=3"});
  EXPECT_EQ(read.status, 0);
  EXPECT_EQ(read.text, "0  (done)\nMode=T1\nParameters=\\x05\\x01\\x03\nAantal=3\n");
  const Ended bad = call({"--simulate", "ctl_param", "address=0", "ReadOrWrite=R", "Mode="});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.text.substr(0, bad.text.find('\n')), "112  (an address or a field is out of range)");
}

TEST(VelkTest, TransactionsEndByTheirStatusAndValuesWell) {
  const Ended reply = call({"--simulate", "ReadCom", "4", "5", "64", "V"});
  EXPECT_EQ(reply.status, 0);
  EXPECT_EQ(reply.text, "\\x00Hall  (done)\n");
  EXPECT_EQ(call({"--simulate", "--set", "SerAddress=9", "ReadCom", "1", "5", "1", "V"}).text,
            "\\xfc  (no reply, or one of a wrong length)\n");
  const Ended record = call({"--simulate", "Module", "R", "090255"});
  EXPECT_NE(record.text.find("Data=\\x05\\x01"), std::string::npos) << "results need no arguments";
  EXPECT_NE(record.text.find("CPUtype=48\nFWVersie=1.0\n"), std::string::npos) << record.text;
  EXPECT_EQ(call({"DECtoBCD", "59"}).text, "89\n");
  EXPECT_EQ(call({"DECtoBCD", "59"}).status, 0);
  EXPECT_EQ(call({"LdZr", "-7", "3"}).text, "007\n");
  EXPECT_EQ(call({"--simulate", "SoortETH"}).text, "Q\n");
  EXPECT_EQ(call({"--set", "NoEcho=true", "NoEcho"}).text, "True\n");
}

TEST(VelkTest, ReadsAndWritesEscapes) {
  EXPECT_EQ(call({"ModeToNr", "\\x44I"}).text, "3\n");
  EXPECT_EQ(call({"ModeToNr", "ModeStr=|P\\\\"}).text, "0\n");
  EXPECT_EQ(call({"--simulate", "TranceivTcp", "1", "1", "0", "255", "/\\x02\\x60\\x05\\x40\\\\"}).status, 0);
  for (const char* const wrong : {"\\", "\\x", "\\x1", "\\xg0", "\\n", "\\x-1"}) {
    EXPECT_EQ(call({"ModeToNr", wrong}).status, 2) << wrong;
  }
}

TEST(VelkTest, PrintsJson) {
  const Ended read = call({"--simulate", "Ctl_Param", "R", "8", "", "--json"});
  const auto json = nlohmann::json::parse(read.text);
  EXPECT_EQ(json["method"], "Ctl_Param");
  EXPECT_EQ(json["result"], 0);
  EXPECT_EQ(json["meaning"], "done");
  EXPECT_EQ(json["arguments"]["Mode"], "T2");
  EXPECT_EQ(json["arguments"]["Aantal"], 12);
  const auto link =
      nlohmann::json::parse(call({"--simulate", "ReadCom", "1", "11", "16", "V", "--json"}).text);
  EXPECT_EQ(link["result"], std::string("\0\xc2\x85", 3)) << "each character is one byte";
  const Ended failed = call({"ReadCom", "1", "5", "1", "V", "--json"});
  EXPECT_EQ(failed.status, 3);
  EXPECT_EQ(nlohmann::json::parse(failed.text)["error"]["number"], 8018);
  EXPECT_TRUE(nlohmann::json::parse(call({"WhatBit", "0", "--json"}).text)["result"].is_null());
}

TEST(VelkTest, RefusesAWrongCommandLine) {
  for (const Words& words :
       {Words{"call", "Nothing"}, Words{"call", "DECtoBCD"}, Words{"call", "DECtoBCD", "1", "2"},
        Words{"call", "DECtoBCD", "256"}, Words{"call", "DECtoBCD", "x"},
        Words{"call", "DECtoBCD", "1", "Getal=1"}, Words{"call", "--set", "OpenCom=1", "TCP"},
        Words{"call", "--set", "TCP=x", "TCP"}, Words{"call", "--simulate", "--serial", "x", "TCP"}, Words{},
        Words{"nothing"}}) {
    EXPECT_EQ(velk(words).status, 2) << testing::PrintToString(words);
  }
  EXPECT_EQ(call({"DECtoBCD", "160"}).status, 3);
  EXPECT_EQ(call({"--serial", "/dev/null/none", "TCP"}).status, 4);
  for (const char* const link : {"here", "[::1]", "::1:8445", "[]:1", ":1", "h:0", "h:65536", "h:1x"}) {
    EXPECT_EQ(call({"--tcp", link, "SoortETH"}).status, 2) << link;
  }
}

TEST(VelkTest, TellsOfAnUnknownCommand) {
  EXPECT_EQ(complaintOf({"nothing", "--json"}),
            "velk: there is no command \"nothing\"; \"velk --help\" lists them\n");
}

TEST(VelkTest, TakesIpv6AddressesInBrackets) {
  if (!fs::exists("/proc/net/if_inet6")) GTEST_SKIP() << "there is no IPv6 here";
  Tool simulator("velk-sim", {"--tcp", "0", "--bind", "::1", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  EXPECT_EQ(link.substr(0, 6), "[::1]:");
  EXPECT_EQ(call({"--tcp", link, "ReadCom", "1", "5", "1", "V"}).text, "\\x00\\x05  (done)\n");
}

TEST(VelkTest, TellsWhyALinkDoesNotOpen) {
  Tool simulator("velk-sim", {"--tcp", "0", "--password", "ab", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  const std::string port = link.substr(link.find(':') + 1);
  Tool mute("velk-sim", {"--tcp", "0", "--fault", "silent@0", "--for", "600"});
  const std::string muteLink = behind(mute.line(), "tcp Q ");
  const auto complaint = [](Words words) {
    words.emplace_back("SoortETH");
    words.insert(words.begin(), "call");
    return complaintOf(std::move(words));
  };
  EXPECT_EQ(complaint({"--tcp", link, "--password", "no"}),
            "velk: cannot open " + link + ": the interface refuses the password (result 1)\n");
  EXPECT_EQ(
      complaint({"--tcp", link}),
      "velk: cannot open " + link + ": the interface asks for a password; give --password (result 1)\n");
  EXPECT_EQ(complaint({"--tcp", muteLink}),
            "velk: cannot open " + muteLink + ": the interface does not answer the login (result 252)\n");
  EXPECT_EQ(
      complaint({"--tcp", "127.0.0.1:1"}),
      "velk: cannot open 127.0.0.1:1: no interface of a controller answers there; check address, port and "
      "network (result 252)\n");
  EXPECT_NE(complaint({"--serial", "/dev/null/none"}).find("there is no such port"), std::string::npos);
}

TEST(VelkTest, ListsMethods) {
  const Ended list = velk({"methods"});
  EXPECT_EQ(list.status, 0);
  EXPECT_NE(list.text.find("OpenTCP(IpAddress text, PortNumber integer, PassWord in/out text = \"\", "
                           "RSAddress byte = 2) : byte"),
            std::string::npos);
  const auto json = nlohmann::json::parse(velk({"methods", "--json"}).text);
  const auto openTcp =
      std::find_if(json.begin(), json.end(), [](const auto& row) { return row["name"] == "OpenTCP"; });
  ASSERT_NE(openTcp, json.end());
  EXPECT_EQ((*openTcp)["parameters"][3]["default"], 2);
}

TEST(VelkSimTest, ServesEveryLinkAndSavesItsMemory) {
  const std::string image = testing::TempDir() + "velk-sim-test-" + std::to_string(getpid());
  Tool simulator("velk-sim", {"--tcp", "0", "--tcp-s", "0", "--echo", "--fast", "--password", "ab", "--trace",
                              "--save", image, "--for", "600"});
  const std::string q = behind(simulator.line(), "tcp Q ");
  const std::string s = behind(simulator.line(), "tcp S ");
  const std::string echo = behind(simulator.line(), "echo ");
  const std::string fast = behind(simulator.line(), "fast ");
  EXPECT_EQ(simulator.line(), "ready");

  EXPECT_EQ(call({"--tcp", q, "--password", "ab", "WriteCom", "1", "5", "4", "V", "\\x2a"}).text,
            "\\x00  (done)\n");
  EXPECT_EQ(simulator.line(), "login -> accepted");
  EXPECT_EQ(simulator.line(), "write 1 V 0504 2A  output 5, parameters -> ok");
  const Ended refused = call({"--tcp", q, "--password", "no", "ReadCom", "1", "5", "4", "V"});
  EXPECT_EQ(refused.status, 4);
  for (const Words& link : {Words{"--tcp", s}, Words{"--serial", echo}, Words{"--serial", fast, "--fast"},
                            Words{"--serial", echo}}) {
    Words words = link;
    words.insert(words.end(), {"ReadCom", "1", "5", "4", "V"});
    EXPECT_EQ(call(words).text, "\\x00*  (done)\n") << testing::PrintToString(link);
  }

  EXPECT_EQ(simulator.finish(), 0);
  Tool again("velk-sim", {"--image", image, "--fault", "late=300@1", "--fault", "status=9@2-"});
  const std::string reloaded = behind(again.line(), "tcp Q ");
  EXPECT_EQ(call({"--tcp", reloaded, "ReadCom", "1", "5", "4", "V"}).text, "\\x00*  (done)\n");
  EXPECT_EQ(call({"--tcp", reloaded, "Ctl_Param", "R", "5", ""}).text.substr(0, 3), "9  ");
  EXPECT_EQ(again.finish(), 0);
  std::filesystem::remove(image);
}

TEST(VelkSimTest, RefusesWhatItCannotDo) {
  EXPECT_EQ(Tool("velk-sim", {"--fault", "nonsense@1"}).wait(), 2);
  EXPECT_EQ(Tool("velk-sim", {"--address", "256"}).wait(), 2);
  EXPECT_EQ(Tool("velk-sim", {"--image", "/nowhere/image"}).wait(), 5);
  EXPECT_EQ(Tool("velk-sim", {"--image", "/dev/null"}).wait(), 5);
  EXPECT_EQ(Tool("velk-sim", {"--save", "/nowhere/image"}).wait(), 5);
  EXPECT_EQ(Tool("velk-sim", {"--save", "/dev/full", "--for", "0"}).wait(), 5);
  EXPECT_EQ(Tool("velk-sim", {"--password", "12345", "--for", "0"}).wait(), 2);
  EXPECT_EQ(Tool("velk-sim", {"--for", "-1"}).wait(), 2);
  EXPECT_EQ(Tool("velk-sim", {"--bind", "nobody"}).wait(), 4);
  EXPECT_EQ(Tool("velk-sim", {"--echo", "/nowhere/device"}).wait(), 4);
}

TEST(VelkSimTest, EndsAtOnceWhenItIsToServeForNoTime) {
  Tool simulator("velk-sim", {"--for", "0", "--save", "-"});
  EXPECT_EQ(simulator.line().substr(0, 6), "tcp Q ");
  EXPECT_EQ(simulator.line(), "ready");
  EXPECT_EQ(simulator.line(), "velk-memory 1");
  simulator.all();
  EXPECT_EQ(simulator.wait(), 0);
}

}  // namespace
}  // namespace velk::cli
