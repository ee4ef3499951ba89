#include <gtest/gtest.h>

#include <csignal>

#include "component/serial.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/house.h"
#include "simulator/serial_sessions.h"
#include "support/bytes.h"
#include "support/real_peers.h"

/// Links that break, on the system's own sockets and pseudo terminals.
namespace velk::test {
namespace {

using namespace std::chrono_literals;

/// The clock of seconds since midnight, which ends waits too, moves in steps of up to 8 ms.
constexpr auto step = 8ms;

/// How long the component waits for a reply over TCP and for a greeting. A test whose wait has to end at once
/// asks for less than this, and no more: how much less depends on the machine.
constexpr auto replyTime = 2000ms;
constexpr auto greetingTime = 1500ms;

/// When a test gives up that goes on until something has come.
constexpr auto longest = 60s;

class RealLink : public testing::Test {
 protected:
  /// Answers on a descriptor in a thread of its own.
  template <class Session>
  std::jthread serve(Fd fd, Ending ending) {
    return std::jthread([this, ending, fd = std::move(fd)]() mutable {
      Session session(controller, simulator::SessionOptions());
      play(std::move(fd), session, ending);
    });
  }

  /// A read of the mode of output 5, and what it has to be.
  Bytes read() { return serial.ReadCom(1, 5, 1, "V"); }
  Bytes held() {
    return controller.answer({.command = link::externalArea, .dph = 5, .dpl = 1, .data = {}}).bytes();
  }

  /// How long a call takes.
  template <class Call>
  std::chrono::nanoseconds timeOf(Call call) {
    const auto start = host.steady();
    call();
    return host.steady() - start;
  }

  platform::Host& host = platform::threadHost();
  simulator::Controller controller{simulator::house()};
  Serial serial;
};

class RealTcp : public RealLink {
 protected:
  std::jthread serveNext(bool kindQ, Ending ending) {
    return std::jthread([this, kindQ, ending] {
      Fd fd = listener.accept();
      if (kindQ) {
        serve<simulator::EthernetQSession>(std::move(fd), ending);
      } else {
        serve<simulator::EthernetSSession>(std::move(fd), ending);
      }
    });
  }

  Byte open() { return serial.OpenTCP("127.0.0.1", static_cast<std::int16_t>(listener.port)); }

  void expectItWorksAfterReopening(bool kindQ) {
    EXPECT_EQ(serial.CloseTCP(), 0);
    const std::jthread peer = serveNext(kindQ, {});
    EXPECT_EQ(open(), 0);
    EXPECT_EQ(read(), held());
    EXPECT_EQ(serial.CloseTCP(), 0);
  }

  void TearDown() override { serial.CloseTCP(); }

  Listener listener;
};

TEST_F(RealTcp, APeerThatEndsInMidReply) {
  struct Row {
    const char* what;
    bool kindQ;
    Ending::How how;
    std::size_t length;  ///< of the piece of the reply that still comes
    Bytes result;
  };
  const std::vector<Row> rows{
      {"Q, nothing, closed", true, Ending::closed, 0, bytes({252})},
      {"Q, nothing, reset", true, Ending::reset, 0, bytes({252})},
      {"Q, half a header, closed", true, Ending::closed, 6, bytes({254})},
      {"Q, half a header, reset", true, Ending::reset, 6, bytes({254})},
      {"Q, a header without length, reset", true, Ending::reset, 10, bytes({100})},
      {"Q, no data, reset", true, Ending::reset, 13, bytes({0})},
      {"S, nothing, reset", false, Ending::reset, 0, bytes({252})},
      {"S, a piece, closed", false, Ending::closed, 9, bytes({254})},
      {"S, a piece, reset", false, Ending::reset, 9, bytes({254})},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    std::jthread peer =
        serveNext(row.kindQ, {.how = row.how, .answers = row.kindQ ? 1 : 0, .length = row.length});
    ASSERT_EQ(open(), 0);
    Bytes result;
    EXPECT_LT(timeOf([&] { result = read(); }), replyTime - step)
        << "the end of the connection ends the wait";
    EXPECT_EQ(result, row.result);
    peer.join();
    EXPECT_EQ(read(), bytes({58})) << "a connection that has ended stays so";
    EXPECT_EQ(open(), 58) << "until it is closed";
    expectItWorksAfterReopening(row.kindQ);
  }
}

TEST_F(RealTcp, ASilentPeerCostsTheTimeOutAndNoMore) {
  std::jthread mute = serveNext(true, {.how = Ending::silent, .answers = 1});
  ASSERT_EQ(open(), 0);
  const auto reply = timeOf([&] { EXPECT_EQ(read(), bytes({252})); });
  EXPECT_GE(reply, replyTime - step);
  EXPECT_LT(reply, 2 * replyTime) << "it is asked once";
  serial.CloseTCP();
  mute.join();

  // Nobody takes the next connection, so that no greeting comes.
  const auto greeting = timeOf([&] { EXPECT_EQ(open(), 252); });
  EXPECT_GE(greeting, greetingTime - step);
  EXPECT_LT(greeting, 2 * greetingTime);
  EXPECT_EQ(open(), 58);
  const Fd accepted = listener.accept();
  expectItWorksAfterReopening(true);
}

TEST_F(RealTcp, ASendThatNobodyTakesEndsTheConnection) {
  platform::Socket& socket = host.socket();
  const auto connect = [&] {
    socket.connect("127.0.0.1", listener.port);
    Fd fd = listener.accept();
    host.block(platform::Source::socket, 10ms, platform::Messages::held);
    return fd;
  };
  {
    const Fd full = connect();
    const auto time =
        timeOf([&] { EXPECT_EQ(errorOf([&] { socket.send(Bytes(64'000'000, 'm')); }), 40006); });
    EXPECT_GE(time, 2s) << "a peer that reads nothing has time";
    EXPECT_TRUE(socket.isDead());
    socket.close();
  }
  {
    Fd gone = connect();
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(gone.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    gone.reset();
    EXPECT_EQ(errorOf([&] { socket.send("x"); }), 40006) << "nobody has waited for news since the reset";
    EXPECT_TRUE(socket.isDead());
  }
}

TEST_F(RealTcp, MoreThanTheBufferHoldsComesWhole) {
  std::jthread peer([&] {
    const Fd fd = listener.accept();
    const Bytes flood = "Welcome to VELK TCP/IP" + Bytes(100'000, 'f');
    EXPECT_EQ(::write(fd.get(), flood.data(), flood.size()), static_cast<ssize_t>(flood.size()));
    char byte = 0;
    while (::read(fd.get(), &byte, 1) > 0) {
    }
  });
  host.socket().connect("127.0.0.1", listener.port);
  std::size_t length = 0;
  const auto end = host.steady() + longest;
  while (length < 100'022 && host.steady() < end) {
    host.block(platform::Source::socket, 1s, platform::Messages::held);
    if (host.socket().hasData()) length += host.socket().receive().size();
  }
  EXPECT_EQ(length, 100'022U);
  serial.CloseTCP();
}

class RealLine : public RealLink, public testing::WithParamInterface<bool> {
 protected:
  /// Once the near end is open: until then there is nothing to read at the far one.
  std::jthread serveLine(Pty& pty, Ending ending) {
    return GetParam() ? serve<simulator::FastSession>(pty.take(), ending)
                      : serve<simulator::EchoSession>(pty.take(), ending);
  }

  Byte open() {
    const Byte result = serial.OpenCom(Pty::number, 9600, GetParam());
    serial.FlgBreak = false;
    return result;
  }

  /// In echo mode a busy machine may take longer than the tenth of a second that each byte has.
  Bytes readOnABusyMachine() {
    Bytes reply = read();
    const auto end = host.steady() + longest;
    while (reply == bytes({254}) && host.steady() < end) {
      std::this_thread::sleep_for(2 * simulator::frameGap);
      reply = read();
    }
    return reply;
  }

  void TearDown() override { serial.CloseCom(); }
};

TEST_P(RealLine, AnUnpluggedDeviceEndsATransactionAndTheNextOneWorks) {
  {
    Pty pty;
    // In echo mode each byte has an answer: the line goes behind the second echo, else behind a piece of the
    // reply.
    ASSERT_EQ(open(), 0);
    const std::jthread far =
        serveLine(pty, {.how = Ending::closed, .answers = GetParam() ? 0 : 2, .length = 3});
    const auto end = host.steady() + longest;
    int error = 0;  // a busy machine may take too long for the answers before
    while (error == 0 && host.steady() < end) error = errorOf([&] { read(); });
    EXPECT_EQ(error, 8020);
    Bytes items;
    EXPECT_EQ(serial.Ctl_Init("R", items), 100) << "methods tell it by their result";
    EXPECT_EQ(open(), 56);
    EXPECT_EQ(serial.CloseCom(), 0);
    EXPECT_EQ(serial.CloseCom(), 84);
  }
  Pty pty;
  ASSERT_EQ(open(), 0);
  const std::jthread far = serveLine(pty, {});
  EXPECT_EQ(readOnABusyMachine(), held());
  EXPECT_EQ(serial.CloseCom(), 0);
}

INSTANTIATE_TEST_SUITE_P(Modes, RealLine, testing::Bool(),
                         [](const auto& row) { return row.param ? "fast" : "echo"; });

/// A signal that comes again and again while this lives; it interrupts system calls.
class Signals {
 public:
  Signals() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);  // and stays: a signal may come late
    sender_ = std::jthread([to = pthread_self()](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        pthread_kill(to, SIGUSR1);
        std::this_thread::sleep_for(5ms);
      }
    });
  }

 private:
  std::jthread sender_;
};

TEST_F(RealTcp, SignalsNeitherEndNorShortenAWait) {
  const std::jthread peer([this] {
    simulator::EthernetQSession session(controller, {.faults = {"late=300@1"}});
    play(listener.accept(), session, {.how = Ending::silent, .answers = 2});
  });
  const Signals signals;
  ASSERT_EQ(open(), 0);
  EXPECT_EQ(read(), held());
  EXPECT_GE(timeOf([&] { EXPECT_EQ(read(), bytes({252})); }), replyTime - step);
  serial.CloseTCP();
}

TEST_F(RealTcp, SignalsDoNotBreakASendThatHasToWait) {
  const Bytes much(16'000'000, 'm');  // more than the system keeps for a peer that does not read
  std::size_t received = 0;
  const std::jthread peer([&] {
    const Fd fd = listener.accept();
    std::this_thread::sleep_for(200ms);
    Bytes buffer(1 << 20, 0);
    for (auto n = ::read(fd.get(), buffer.data(), buffer.size()); n > 0 && received < much.size();
         n = received < much.size() ? ::read(fd.get(), buffer.data(), buffer.size()) : 0) {
      received += static_cast<std::size_t>(n);
    }
  });
  host.socket().connect("127.0.0.1", listener.port);
  host.block(platform::Source::socket, 10ms, platform::Messages::held);
  {
    const Signals signals;
    EXPECT_EQ(errorOf([&] { host.socket().send(much); }), 0);
  }
  EXPECT_FALSE(host.socket().isDead());
  serial.CloseTCP();
}

TEST_P(RealLine, SignalsNeitherEndNorShortenAWait) {
  Pty pty;
  const Signals signals;
  EXPECT_GE(timeOf([&] { ASSERT_EQ(open(), 0); }), 500ms - step);
  const std::jthread far = serveLine(pty, {});
  EXPECT_EQ(readOnABusyMachine(), held());
  serial.CloseCom();
}

}  // namespace
}  // namespace velk::test
