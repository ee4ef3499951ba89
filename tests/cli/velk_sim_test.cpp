#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "cli/tool.h"
#include "platform/devices.h"
#include "support/real_peers.h"

namespace velk::cli {
namespace {

/// How often threads of a process have gone to sleep, each once more than it was woken.
long sleeps(pid_t process) {
  long sum = 0;
  for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    std::ifstream file(task.path() / "status");
    for (std::string line; std::getline(file, line);) {
      constexpr std::string_view name = "voluntary_ctxt_switches:";
      if (line.starts_with(name)) sum += std::stol(line.substr(name.size()));
    }
  }
  return sum;
}

TEST(VelkSimTest, SleepsUntilSomethingHappens) {
  Tool simulator("exec velk-sim --tcp 0 --echo --fast --web 0 --for 600");
  const std::string port = simulator.lineBehind("tcp Q 127.0.0.1:");
  ASSERT_TRUE(simulator.reaches("ready"));
  sockaddr_in place{.sin_family = AF_INET, .sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)))};
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const platform::Fd idle(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(connect(idle.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
  std::array<char, 22> greeting{};
  ASSERT_EQ(recv(idle.get(), greeting.data(), greeting.size(), MSG_WAITALL), 22);
  bool sleptOn = false;
  for (int i = 0; i < 60 && !sleptOn; ++i) {
    const long before = sleeps(simulator.pid());
    std::this_thread::sleep_for(std::chrono::seconds(1));
    sleptOn = sleeps(simulator.pid()) == before;
  }
  EXPECT_TRUE(sleptOn);
  EXPECT_EQ(simulator.finish(), 0);
}

/// A program opens a line for itself alone, and ends without a word: the next one may open it.
TEST(VelkSimTest, APseudoTerminalIsFreeAgain) {
  Tool simulator("exec velk-sim --echo --for 600");
  const std::string name = simulator.lineBehind("echo ");
  const auto isExclusive = [](const platform::Fd& line) {
    int exclusive = 0;
    EXPECT_EQ(ioctl(line.get(), TIOCGEXCL, &exclusive), 0);
    return exclusive != 0;
  };
  ASSERT_TRUE(simulator.reaches("ready"));
  platform::Fd line(open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(ioctl(line.get(), TIOCEXCL), 0);
  line.reset();
  line = platform::Fd(open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  for (int i = 0; i < patience / 10 && isExclusive(line); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_FALSE(isExclusive(line));
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
