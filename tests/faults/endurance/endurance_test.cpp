#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "cli/sim/server.h"
#include "component/serial.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/house.h"
#include "support/bytes.h"
#include "support/real_peers.h"

namespace velk {
namespace {

/// The simulated house behind a TCP port of 127.0.0.1.
struct ServedHouse {
  simulator::Controller controller{simulator::house()};
  cli::Server server;  // behind what its threads use
  std::uint16_t port = server.listen("127.0.0.1", 0, [this] {
    return std::make_unique<simulator::EthernetQSession>(controller, simulator::SessionOptions());
  });

  Byte open(Serial& serial) const { return serial.OpenTCP("127.0.0.1", static_cast<std::int16_t>(port)); }
};

/// A place of its own for each number.
Bytes writeAndRead(Serial& serial, Byte number, const Bytes& value) {
  const Byte place = static_cast<Byte>(number * 4);
  const Bytes written = serial.WriteCom(4, 200, place, "V", value);
  return written == test::bytes({0}) ? serial.ReadCom(4, 200, place, "V") : "no write";
}

long residentPages() {
  long size = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident;
}

/// Objects of different threads share nothing: each has its own port, socket and clock.
TEST(Threads, EachHasAConnectionOfItsOwn) {
  const ServedHouse house;
  std::vector<std::jthread> running;
  for (int t = 0; t < 8; ++t) {
    running.emplace_back([&house, t] {
      Serial serial;
      EXPECT_EQ(house.open(serial), 0);
      for (int i = 0; i < 200; ++i) {
        const Bytes value = test::bytes({t, i, i >> 8, 7});
        EXPECT_EQ(writeAndRead(serial, static_cast<Byte>(t), value), '\0' + value);
      }
      serial.CloseTCP();
    });
  }
}

TEST(Endurance, ConnectionsAndTransactionsLeakNothing) {
  const ServedHouse house;
  Serial serial;
  long descriptors = 0;
  long pages = 0;
  for (int i = 0; i < 10'000; ++i) {
    ASSERT_EQ(house.open(serial), 0) << i;
    for (int k = 0; k < 50; ++k) ASSERT_EQ(writeAndRead(serial, 1, "same"), Bytes("\0same", 5)) << i;
    serial.CloseTCP();
    if (i == 0) descriptors = test::openDescriptors();
    if (i == 200) pages = residentPages();
  }
  constexpr long slack = 64;  // of 4 KiB
  EXPECT_LE(residentPages(), pages + slack);
  // The server closes its ends a little later.
  for (int i = 0; i < 1200 && test::openDescriptors() > descriptors; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_LE(test::openDescriptors(), descriptors);
}

}  // namespace
}  // namespace velk
