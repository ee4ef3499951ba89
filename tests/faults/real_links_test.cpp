#include "component/serial.h"
#include "simulator/house.h"
#include "simulator/link_kind.h"
#include "support/bytes.h"
#include "support/real_peers.h"

/// Links that break, on the system's own sockets and pseudo terminals.
namespace velk::test {
namespace {

using namespace std::chrono_literals;
using simulator::LinkKind;

class RealLink : public testing::Test {
 protected:
  /// Opens a link to an interface that answers in a thread of its own, well until the ending.
  void connect(LinkKind kind, const Ending& ending = {}) {
    if (isSerial(kind)) {
      pty.emplace();
      EXPECT_EQ(open(kind), 0);  // until then there is nothing to read at the far end
    }
    peer = std::jthread([=, this] {
      const auto session = makeSession(kind, controller);
      play(isSerial(kind) ? pty->take() : listener.accept(), *session, ending);
    });
    EXPECT_TRUE(isSerial(kind) || open(kind) == 0);
    serial.FlgBreak = false;
  }

  Byte open(LinkKind kind) {
    return isSerial(kind) ? serial.OpenCom(Pty::number, 9600, kind == LinkKind::fast)
                          : serial.OpenTCP("127.0.0.1", static_cast<std::int16_t>(listener.port));
  }

  /// Reads the mode of output 5, which is T1: the reply as it has to be, else its first byte or the run-time
  /// error.
  static constexpr int good = -1;
  int read() {
    Bytes reply;
    const int error = errorOf([&] { reply = serial.ReadCom(1, 5, 1, "V"); });
    return error != 0 ? error : reply == bytes({0, 5}) ? good : byteAt(reply, 0);
  }

  /// Reads until it comes to a result: a busy machine may be too slow for a line's tenth of a second.
  void expectRead(int result) {
    int came = read();
    for (int i = 0; i < 60 && !serial.TCP && came != result; ++i) {
      std::this_thread::sleep_for(2 * simulator::frameGap);
      came = read();
    }
    EXPECT_EQ(came, result);
  }

  platform::Host& host = platform::threadHost();
  simulator::Controller controller{simulator::house()};
  Serial serial;
  Listener listener;
  std::optional<Pty> pty;
  std::jthread peer;
};

TEST_F(RealLink, APeerThatEndsInMidReplyEndsTheWaitAndTheNextOneWorks) {
  const struct {
    const char* what;
    LinkKind kind;
    Ending ending;
    int result;
  } rows[] = {{"Q, nothing, closed", LinkKind::ethernetQ, {Ending::closed, 1, 0}, 252},
              {"Q, half a header, reset", LinkKind::ethernetQ, {Ending::reset, 1, 6}, 254},
              {"Q, a header without length, reset", LinkKind::ethernetQ, {Ending::reset, 1, 10}, 100},
              {"Q, no data, closed", LinkKind::ethernetQ, {Ending::closed, 1, 13}, 0},
              {"S, nothing, reset", LinkKind::ethernetS, {Ending::reset, 0, 0}, 252},
              {"S, a piece, closed", LinkKind::ethernetS, {Ending::closed, 0, 9}, 254},
              {"fast, a piece", LinkKind::fast, {Ending::closed, 0, 3}, 8020},
              {"echo, two bytes of the request", LinkKind::echo, {Ending::closed, 2, 0}, 8020}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const bool line = isSerial(row.kind);
    connect(row.kind, row.ending);
    const auto start = host.steady();
    expectRead(row.result);
    EXPECT_TRUE(line || host.steady() - start < 1990ms) << "it need not wait for more";
    peer.join();
    EXPECT_EQ(read(), line ? 8020 : 58) << "a link that has ended stays so";
    EXPECT_EQ(serial.Ctl_Init("R", ""), line ? 100 : 58);
    EXPECT_EQ(open(row.kind), line ? 56 : 58) << "until it is closed";
    EXPECT_EQ(line ? serial.CloseCom() : serial.CloseTCP(), 0);
    connect(row.kind);
    expectRead(good);
    EXPECT_EQ(line ? serial.CloseCom() : serial.CloseTCP(), 0);
  }
}

}  // namespace
}  // namespace velk::test
