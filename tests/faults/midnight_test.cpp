#include "support/simulated_house.h"

namespace velk::test {
namespace {

using namespace std::chrono_literals;

/// At midnight every wait ends early, and so does every one in the first second of the day: what takes time
/// to answer fails, whatever the link, and works again behind it.
class Midnight : public SimulatedHouse {
 protected:
  static constexpr std::chrono::milliseconds day = 24h;

  /// The first byte of the reply to a read that is made at a time of day.
  int statusAt(std::chrono::milliseconds time) {
    host.setClock(time);
    return byteAt(serial.ReadCom(1, 5, 1, "V"), 0);
  }
};

TEST_F(Midnight, FailsWhatIsAnsweredLateForASecondAndNoLonger) {
  const struct {
    LinkKind kind;
    int failed;
  } rows[] = {
      {LinkKind::fast, 252}, {LinkKind::echo, 252}, {LinkKind::ethernetQ, 252}, {LinkKind::ethernetS, 252}};
  for (const auto& row : rows) {
    SCOPED_TRACE(nameOf(row.kind));
    open(row.kind, {"late=40@*"});
    EXPECT_EQ(statusAt(day - 100ms), 0);
    EXPECT_EQ(statusAt(day - 20ms), row.failed);
    EXPECT_EQ(statusAt(900ms), row.failed);
    EXPECT_EQ(statusAt(1010ms), 0);
  }
}

TEST_F(Midnight, LeavesWhatIsAnsweredAtOnceAlone) {
  for (const LinkKind kind : allLinks) {
    SCOPED_TRACE(nameOf(kind));
    open(kind);
    for (const auto time : {day - 1ms, day - 5ms, 0ms + 0s, 500ms + 0s}) EXPECT_EQ(statusAt(time), 0);
  }
}

}  // namespace
}  // namespace velk::test
