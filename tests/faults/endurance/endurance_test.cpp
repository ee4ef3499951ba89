#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "cli/server.h"
#include "component/serial.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/house.h"
#include "support/bytes.h"

namespace velk {
namespace {

/// The simulated house behind a TCP port of 127.0.0.1.
class ServedHouse {
 public:
  ServedHouse() {
    const std::uint16_t bound = server_.listen("127.0.0.1", 0, [this] {
      return std::make_unique<simulator::EthernetQSession>(controller_, simulator::SessionOptions());
    });
    port_ = static_cast<std::int16_t>(bound);
  }

  Byte open(Serial& serial) const { return serial.OpenTCP("127.0.0.1", port_); }

 private:
  simulator::Controller controller_{simulator::house()};
  std::int16_t port_;
  cli::Server server_;  // last, so that its threads end before what they use
};

/// A place of its own for each number.
Bytes writeAndRead(Serial& serial, Byte number, const Bytes& value) {
  if (serial.WriteCom(4, 200, static_cast<Byte>(number * 4), "V", value) != test::bytes({0}))
    return "no write";
  return serial.ReadCom(4, 200, static_cast<Byte>(number * 4), "V");
}

long openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

long residentPages() {
  std::ifstream file("/proc/self/statm");
  long size = 0;
  long resident = 0;
  file >> size >> resident;
  return resident;
}

/// Objects of different threads share nothing: each has its own port, socket and clock.
TEST(Threads, EachHasAConnectionOfItsOwn) {
  constexpr int threads = 8;
  constexpr int rounds = 200;
  const ServedHouse house;
  std::array<int, threads> good{};
  {
    std::vector<std::jthread> running;
    for (int t = 0; t < threads; ++t) {
      running.emplace_back([&house, &count = good.at(static_cast<std::size_t>(t)), t] {
        Serial serial;
        if (house.open(serial) != 0) return;
        for (int i = 0; i < rounds; ++i) {
          const Bytes value = test::bytes({t, i, i >> 8, 7});
          if (writeAndRead(serial, static_cast<Byte>(t), value) == '\0' + value) ++count;
        }
        serial.CloseTCP();
      });
    }
  }
  for (const int count : good) EXPECT_EQ(count, rounds);
}

TEST(Endurance, ConnectingAndClosingLeaksNothing) {
  constexpr int cycles = 10'000;
  const ServedHouse house;
  Serial serial;
  ASSERT_EQ(house.open(serial), 0);
  serial.CloseTCP();
  const long before = openDescriptors();
  for (int i = 0; i < cycles; ++i) {
    ASSERT_EQ(house.open(serial), 0) << i;
    serial.CloseTCP();
  }
  // The server closes its ends a little later.
  for (int i = 0; i < 1200 && openDescriptors() > before; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_LE(openDescriptors(), before);
}

TEST(Endurance, MemoryStaysFlatOverManyTransactions) {
  constexpr int warmUp = 10'000;
  constexpr int transactions = 1'000'000;
  const ServedHouse house;
  Serial serial;
  ASSERT_EQ(house.open(serial), 0);
  const Bytes value = "same";
  for (int i = 0; i < warmUp; ++i) ASSERT_EQ(writeAndRead(serial, 1, value), '\0' + value);
  const long before = residentPages();
  for (int i = 0; i < transactions / 2; ++i) ASSERT_EQ(writeAndRead(serial, 1, value), '\0' + value);
  constexpr long slack = 64;  // of 4 KiB
  EXPECT_LE(residentPages(), before + slack);
}

}  // namespace
}  // namespace velk
