#include <gtest/gtest.h>

#include "cli/tool.h"
#include "platform/devices.h"
#include "support/real_peers.h"

namespace velk::cli {
namespace {

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
