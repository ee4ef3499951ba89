#include "support/simulated_house.h"

namespace velk::test {
namespace {

using namespace std::chrono_literals;

/// At midnight every wait ends early, and so does every one in the first second of the day: what takes time
/// to answer fails, whatever the link, and works again behind it. What is answered at once does not.
TEST_F(SimulatedHouse, MidnightFailsWhatIsAnsweredLateForASecondAndNoLonger) {
  for (const LinkKind kind : allLinks) {
    SCOPED_TRACE(nameOf(kind));
    const auto statusAt = [&](std::chrono::milliseconds time) {
      host.transferTime = 0ms;
      host.setClock(time);
      return int{byteAt(serial.ReadCom(1, 5, 1, "V"), 0)};
    };
    open(kind, {"late=40@*"});
    EXPECT_EQ(statusAt(24h - 100ms), 0);
    EXPECT_EQ(statusAt(24h - 20ms), 252);
    EXPECT_EQ(statusAt(1000ms), 252);
    EXPECT_EQ(statusAt(1001ms), 0);
    open(kind);
    for (const auto time : {24h - 1ms, 24h - 5ms, 0h + 0ms, 0h + 500ms}) EXPECT_EQ(statusAt(time), 0);
  }
}

}  // namespace
}  // namespace velk::test
