#include <gtest/gtest.h>

#include "cli/tool.h"
#include "platform/devices.h"
#include "support/real_peers.h"

namespace velk::cli {
namespace {

TEST(VelkSimTest, ServesEveryLinkAndSavesItsMemory) {
  const Folder folder;
  House house("--tcp-s 0 --echo --fast --password ab --trace --save " + folder / "image");
  const std::string s = house.simulator.lineBehind("tcp S ");
  const std::string echo = house.simulator.lineBehind("echo ");
  const std::string fast = house.simulator.lineBehind("fast ");
  EXPECT_EQ(house.simulator.line(), "ready");

  EXPECT_EQ(house.velk("call --password ab WriteCom 1 5 4 V '\\x2a'").text, "\\x00  (done)\n");
  EXPECT_EQ(house.simulator.line(), "login -> accepted");
  EXPECT_EQ(house.simulator.line(), "write 1 V 0504 2A  output 5, parameters -> ok");
  EXPECT_EQ(house.velk("call --password no ReadCom 1 5 4 V").status, 4);
  for (const std::string& link :
       {"--tcp " + s, "--serial " + echo, "--serial " + fast + " --fast", "--serial " + echo}) {
    EXPECT_EQ(velk("call " + link + " ReadCom 1 5 4 V").text, "\\x00*  (done)\n") << link;
  }

  EXPECT_EQ(house.simulator.finish(), 0);
  House again("--image " + folder / "image" + " --fault late=300@1 --fault status=9@2-");
  EXPECT_EQ(again.velk("call ReadCom 1 5 4 V").text, "\\x00*  (done)\n");
  EXPECT_EQ(again.velk("call Ctl_Param R 5 ''").text.substr(0, 3), "9  ");
  EXPECT_EQ(again.simulator.finish(), 0);
}

TEST(VelkSimTest, TakesIpv6AddressesInBrackets) {
  if (!std::filesystem::exists("/proc/net/if_inet6")) GTEST_SKIP() << "there is no IPv6 here";
  const House house("--bind ::1");
  EXPECT_EQ(house.link.substr(0, 6), "[::1]:");
  EXPECT_EQ(house.velk("call ReadCom 1 5 1 V").text, "\\x00\\x05  (done)\n");
}

/// A serial device that velk-sim is given, not one that it makes.
TEST(VelkSimTest, AnswersOnADevice) {
  const std::tuple<const char*, Bytes, Bytes> rows[] = {
      {"--echo ", "*\x20\x05\x01", Bytes("*\x20\x05\x01\0\x05", 6)},
      {"--fast ", "*\x02\x02\x20\x05\x01#", Bytes("*\x02\x02\x20\x05\x01\0\x05#", 9)},
  };
  for (const auto& [mode, request, reply] : rows) {
    test::Pty line;
    Tool simulator("exec velk-sim --baud 19200 --for 600 " +
                   (mode + *platform::mappedPort(test::Pty::number)));
    ASSERT_TRUE(simulator.reaches("ready"));
    ASSERT_EQ(write(line.far(), request.data(), request.size()), static_cast<ssize_t>(request.size()));
    pollfd watched{.fd = line.far(), .events = POLLIN, .revents = 0};
    Bytes received;
    for (char byte = 0; received.size() < reply.size() && poll(&watched, 1, patience) == 1;
         received += byte) {
      ASSERT_EQ(read(line.far(), &byte, 1), 1);
    }
    EXPECT_EQ(received, reply);
    EXPECT_EQ(simulator.finish(), 0);
  }
}

}  // namespace
}  // namespace velk::cli
