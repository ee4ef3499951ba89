#include "simulator/link_kind.h"
#include "support/scripted_peer.h"

namespace velk::test {
namespace {

using simulator::LinkKind;

constexpr Byte good = 0x11;
constexpr Byte stale = 0x77;

/// A read of a byte of output 5, and the reply, on each kind of link.
std::array<Bytes, 4> requests(int low) {
  const Bytes fast = bytes({'*', 2, 2, 0x20, 5, low, '#'});
  return {bytes({'*', 0x20, 5, low}), fast, "VELK" + bytes({0, 1, 0, 1, 0, 255, 0, 5, '/', 2, 0x20, 5, low}),
          bytes({7, 0, 0, 0, 13, 0, 0, 0}) + fast};
}

std::array<Bytes, 4> replies(int low, Byte value) {
  const Bytes fast = bytes({'*', 2, 2, 0x20, 5, low, 0, value, '#'});
  return {bytes({0, value}), fast, "VELK" + bytes({0, 1, 0, 1, 0, 255, 0, 2, 0, value}),
          bytes({9, 0, 0, 0, 13, 0, 0, 0}) + fast};
}

class StaleAnswer : public ScriptedLink {};

/// The reply to a read of offset 1 comes too late. What the next read, of a second or of the same place,
/// makes of it: what is caught, and what the frames cannot tell.
TEST_F(StaleAnswer, IsCaughtWhereTheFramesTellIt) {
  const struct {
    const char* what;
    LinkKind kind;
    std::chrono::milliseconds late, pause;  ///< of that reply; between the reads
    Byte second;                            ///< offset of the second read
    int sent;                               ///< how often that goes out
    Byte value;
  } rows[] = {{"what came before a request is dropped", LinkKind::fast, 1200ms, 1s, 1, 1, good},
              {"the same", LinkKind::echo, 1200ms, 1s, 1, 1, good},
              {"the same", LinkKind::ethernetQ, 2200ms, 1s, 1, 1, good},
              {"the same", LinkKind::ethernetS, 2200ms, 1s, 1, 1, good},
              {"the address of another place is skipped", LinkKind::fast, 1010ms, 0s, 9, 2, good},
              {"no frame has a number: the same place", LinkKind::fast, 1010ms, 0s, 1, 1, stale},
              {"nothing tells whose reply follows an echo", LinkKind::echo, 1010ms, 0s, 9, 1, stale},
              {"headers of kind Q are alike", LinkKind::ethernetQ, 2010ms, 0s, 9, 1, stale},
              {"headers of kind S are not compared", LinkKind::ethernetS, 2010ms, 0s, 9, 1, stale}};
  for (const auto& row : rows) {
    const auto kind = static_cast<std::size_t>(row.kind);
    SCOPED_TRACE(row.what + (", link " + std::to_string(kind)));
    const bool q = row.kind == LinkKind::ethernetQ;
    isSerial(row.kind) ? openSerial(row.kind == LinkKind::fast) : openSocket(q ? "Q" : "S");
    const Byte attempts = serial.TCP ? 0 : 1;
    script.on(requests(1)[kind], {Delivery{.bytes = replies(1, stale)[kind], .after = row.late}});
    for (int i = 0; i < row.sent; ++i) {
      script.on(requests(row.second)[kind],
                {Delivery{.bytes = replies(row.second, good)[kind], .after = 50ms}});
    }
    EXPECT_EQ(serial.ReadCom(1, 5, 1, "V", attempts), bytes({252}));
    host.block(platform::Source::nothing, row.pause, platform::Messages::held);
    EXPECT_EQ(serial.ReadCom(1, 5, row.second, "V", attempts), bytes({0, row.value}));
    EXPECT_TRUE(script.isDone());
    serial.CloseTCP();
    serial.CloseCom();
  }
}

}  // namespace
}  // namespace velk::test
