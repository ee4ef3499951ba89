#include <asm/ioctls.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdarg>
#include <set>
#include <thread>

#include "component/serial.h"
#include "platform/host.h"
#include "platform/posix/backlog.h"
#include "support/bytes.h"
#include "support/real_peers.h"

namespace {

/// TCGETS2, whose header and that of pseudo terminals exclude each other.
constexpr unsigned long askSettings = 0x802C'542A;

/// Requests that fail in this thread, and with what.
thread_local std::set<unsigned long> refused;
thread_local int refusal = 0;

/// Whether the system has no descriptor left for a look-up in this thread.
thread_local bool noDescriptor = false;

}  // namespace

// In front of the system's own.

extern "C" int eventfd(unsigned int count, int flags) noexcept {
  if (!noDescriptor) return static_cast<int>(syscall(SYS_eventfd2, count, flags));
  errno = EMFILE;
  return -1;
}

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept {
  if (refused.contains(request)) {
    errno = refusal;
    return -1;
  }
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return static_cast<int>(syscall(SYS_ioctl, fd, request, argument));
}

namespace velk::platform {
namespace {

using namespace std::chrono_literals;

using test::errorOf;
using test::Listener;
using test::Pty;

/// The longest wait for what comes at once. Only a fault makes a test wait for its end, so it is longer than
/// any machine takes.
constexpr auto longest = 60s;

std::chrono::nanoseconds cpuTime() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

class PosixPort : public testing::Test {
 protected:
  Host& host = threadHost();
  SerialPort& port = host.port();
  void TearDown() override {
    refused.clear();
    if (port.isOpen()) port.close();
  }
};

TEST_F(PosixPort, CarriesAllByteValuesBothWays) {
  const Pty pty;
  port.open(Pty::number, {});
  Bytes all;
  for (int i = 0; i < 256; ++i) all += character(i);
  port.write(all);
  Bytes received(all.size(), '\0');
  ASSERT_EQ(::read(pty.far(), received.data(), received.size()), 256);
  EXPECT_EQ(received, all);
  ASSERT_EQ(::write(pty.far(), all.data(), all.size()), 256);
  host.block(Source::port, longest, Messages::held);
  EXPECT_EQ(port.read(), all);
  EXPECT_EQ(port.read(), "");
  port.setBreak(true);
  port.setBreak(false);
}

TEST_F(PosixPort, OneReadTakesAllThatHasCome) {
  const Pty pty;
  port.open(Pty::number, {});
  const Bytes noise(6000, 'n');
  ASSERT_EQ(::write(pty.far(), noise.data(), noise.size()), 6000);
  EXPECT_EQ(port.read().size(), noise.size());
  EXPECT_TRUE(port.read().empty());
}

/// What a device hands out, a piece a call, and how many bytes are taken in how many calls.
TEST(Backlog, IsTakenWholeAndCostsAReplyNothing) {
  const struct {
    const char* what;
    std::vector<ssize_t> pieces;
    ssize_t taken;
    std::size_t calls;
  } rows[] = {
      {"the ring of the system ends in it", {4095, 1, 1904, -1}, 6000, 4},
      {"the device is pulled out behind it", {4096, 0}, 4096, 2},
      {"a reply of the longest kind", {1023, 500}, 1023, 1},
      {"the shortest that may be more", {1024, 7, -1}, 1031, 3},
      {"nothing", {-1, 5}, -1, 1},
      {"a device that is gone", {0, 5}, 0, 1},
      {"a flood", std::vector<ssize_t>(99, 4096), 65536, 16},
  };
  for (const auto& row : rows) {
    Bytes buffer;
    std::size_t calls = 0;
    Bytes expected;
    const ssize_t taken = takeAll(buffer, [&](char* place, std::size_t size) {
      const ssize_t piece = row.pieces.at(calls);
      EXPECT_LE(piece, static_cast<ssize_t>(size));
      const Bytes text(static_cast<std::size_t>(std::max<ssize_t>(piece, 0)),
                       character(static_cast<int>(calls)));
      std::copy(text.begin(), text.end(), place);
      expected += text;
      ++calls;
      return piece;
    });
    EXPECT_EQ(taken, row.taken) << row.what;
    EXPECT_EQ(calls, row.calls) << row.what;
    EXPECT_EQ(buffer.substr(0, expected.size()), expected) << row.what;
  }
}

TEST_F(PosixPort, ADeviceThatTakesNothingIsBusy) {
  const Pty pty;
  port.open(Pty::number, {});
  const auto start = host.steady();
  EXPECT_EQ(errorOf([&] { port.write(Bytes(1 << 20, 'x')); }), 8019);
  EXPECT_GE(host.steady() - start, 1s);
}

TEST_F(PosixPort, ErrorsByNumber) {
  const Pty pty;
  EXPECT_EQ(errorOf([&] { port.close(); }), 8012);
  EXPECT_EQ(errorOf([&] { port.read(); }), 8018);
  EXPECT_EQ(errorOf([&] { port.write("x"); }), 8018);
  EXPECT_EQ(errorOf([&] { port.setBreak(true); }), 8018);
  EXPECT_EQ(errorOf([&] { port.open(0, {}); }), 8002);
  EXPECT_EQ(errorOf([&] { port.open(255, {}); }), 8002) << "by its own name, which no machine has";
  mapPort(201, "/nowhere");
  EXPECT_EQ(errorOf([&] { port.open(201, {}); }), 8002);
  mapPort(201, "/dev/null");
  EXPECT_NE(errorOf([&] { port.open(201, {}); }), 0) << "not a serial port";
  mapPort(201, "");
  const int before = openDevices();
  port.open(Pty::number, {});
  EXPECT_EQ(openDevices(), before + 1);
  EXPECT_EQ(errorOf([&] { port.open(Pty::number, {}); }), 8005);
  int other = 0;
  std::thread([&] { other = errorOf([] { threadHost().port().open(Pty::number, {}); }); }).join();
  EXPECT_EQ(other, 8005) << "another thread has its own port, but not the same device";
}

TEST_F(PosixPort, VanishedDeviceIsAnErrorNotAHang) {
  Pty pty;
  port.open(Pty::number, {});
  pty.hangUp();
  const auto start = host.steady();
  host.block(Source::port, longest, Messages::held);
  EXPECT_LT(host.steady() - start, longest);
  EXPECT_EQ(errorOf([&] { port.read(); }), 8020);
  EXPECT_EQ(errorOf([&] { port.write("x"); }), 8020);
  EXPECT_EQ(errorOf([&] { port.setBreak(true); }), 8020);
  port.close();
}

TEST_F(PosixPort, ALineWithoutABreakIsNoFailure) {
  const Pty pty;
  port.open(Pty::number, {});
  for (const int error : {EOPNOTSUPP, EPIPE, EINVAL, EIO}) {
    refusal = error;
    refused = {TIOCSBRK, TIOCCBRK};
    EXPECT_EQ(errorOf([&] { port.setBreak(true); }), 0) << error;
    EXPECT_EQ(errorOf([&] { port.setBreak(false); }), 0) << error;
    refused = {TIOCSBRK, TIOCCBRK, askSettings};
    EXPECT_EQ(errorOf([&] { port.setBreak(true); }), 8020) << error << ", and the device is gone";
    refused = {TIOCCBRK, askSettings};
    EXPECT_EQ(errorOf([&] { port.setBreak(false); }), 8020) << error << ", gone since the break began";
  }
}

TEST_F(PosixPort, TheBreakStaysWantedUntilTheLineHasTakenItOrHasNone) {
  const Pty pty;
  Serial serial;
  ASSERT_EQ(serial.OpenCom(Pty::number), 0);
  refusal = EOPNOTSUPP;
  refused = {TIOCSBRK, askSettings};
  EXPECT_EQ(errorOf([&] { serial.ReadCom(1, 5, 1, "V", 1); }), 8020);
  EXPECT_TRUE(serial.FlgBreak);
  refused = {TIOCSBRK, TIOCCBRK};
  EXPECT_EQ(serial.ReadCom(1, 5, 1, "V", 1), Bytes(1, '\xFE')) << "sent, but this far end does not echo";
  EXPECT_FALSE(serial.FlgBreak);
}

TEST_F(PosixPort, OpensWithEverySettingThatCanBeNamed) {
  const Pty pty;
  for (const char* settings : {"300,N,5,1", "1200,E,6,1.5", "19200,O,7,2", "9600,M,8,1", "115200,S,8,1"}) {
    EXPECT_EQ(errorOf([&] { port.open(Pty::number, parseSettings(settings)); }), 0) << settings;
    port.close();
  }
}

TEST_F(PosixPort, AnswerIsTakenUpAtOnceAndWaitingCostsNothing) {
  const Pty pty;
  port.open(Pty::number, {});
  const auto start = host.steady();
  const auto cpu = cpuTime();
  host.block(Source::port, 300ms, Messages::held);
  EXPECT_GE(host.steady() - start, 300ms);
  EXPECT_LE(cpuTime() - cpu, 30ms) << "a loop takes all that other programs leave it";
  std::thread far([&] {
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(::write(pty.far(), "x", 1), 1);
  });
  const auto again = host.steady();
  host.block(Source::port, longest, Messages::held);
  EXPECT_LT(host.steady() - again, longest);
  far.join();
}

TEST(SerialSettings, OnlyWhatAPortCanBeSetTo) {
  const SerialSettings settings = parseSettings(" 9600,N,8,1");
  EXPECT_EQ(settings.baud, 9600);
  EXPECT_EQ(settings.parity, 'N');
  EXPECT_EQ(settings.dataBits, 8);
  EXPECT_EQ(parseSettings("300,E,7,1.5").stopBits, 1.5);
  for (const char* text : {"", "0,N,8,1", "-1,N,8,1", "9600,X,8,1", "9600,N,9,1", "9600,N,8", "9600,N,8,1,1",
                           "9600,,8,1", "9600,N,8,3"}) {
    EXPECT_EQ(errorOf([&] { parseSettings(text); }), 380) << text;
  }
}

/// A wait for the greeting of an interface that went to its end would take as long.
constexpr auto greetingTime = 1490ms;

class PosixSocket : public testing::Test {
 protected:
  Host& host = threadHost();
  Socket& socket = host.socket();
  void TearDown() override { socket.close(); }

  /// Lets the socket go on until `done`.
  template <class Done>
  void goOn(Done done) {
    const auto end = host.steady() + longest;
    while (!done() && host.steady() < end) host.block(Source::socket, 100ms, Messages::dispatched);
  }
};

TEST_F(PosixSocket, ConnectsByAddressAndByName) {
  for (const char* name : {"127.0.0.1", "localhost"}) {
    const Listener listener;
    socket.connect(name, listener.port);
    EXPECT_EQ(errorOf([&] { socket.connect(name, listener.port); }), 40020);
    std::thread server([&] {
      const Fd fd = listener.accept();
      EXPECT_EQ(::write(fd.get(), "hello", 5), 5);
      char byte = 0;
      EXPECT_EQ(::read(fd.get(), &byte, 1), 1);
    });
    goOn([&] { return socket.hasData(); });
    EXPECT_EQ(socket.receive(), "hello") << name;
    socket.send("x");
    server.join();
    goOn([&] { return socket.isDead(); });
    EXPECT_TRUE(socket.isDead()) << "the peer has hung up";
    EXPECT_EQ(errorOf([&] { socket.send("x"); }), 40006);
    EXPECT_EQ(errorOf([&] { socket.receive(); }), 40006);
    EXPECT_EQ(errorOf([&] { socket.connect(name, listener.port); }), 40020);
    socket.close();
  }
}

TEST_F(PosixSocket, RefusedUnknownAndUnconnected) {
  EXPECT_EQ(errorOf([&] { socket.send("x"); }), 40006);
  EXPECT_EQ(errorOf([&] { socket.receive(); }), 40006);
  Listener listener;
  listener.stop();
  for (const std::string& name :
       {std::string("127.0.0.1"), std::string(), Bytes("a\0b", 3), Bytes("127.0.0.1\0b", 11)}) {
    socket.connect(name, listener.port);
    goOn([&] { return socket.isDead(); });
    EXPECT_TRUE(socket.isDead()) << name;
    EXPECT_TRUE(socket.isOpen());
    socket.close();
    EXPECT_FALSE(socket.isOpen());
  }
}

TEST_F(PosixSocket, ALookUpThatCannotBeStartedLeavesItClosed) {
  const int before = openDevices();
  noDescriptor = true;
  const int error = errorOf([&] { socket.connect("localhost", 1); });
  noDescriptor = false;
  EXPECT_EQ(error, 7);
  EXPECT_FALSE(socket.isOpen());
  EXPECT_EQ(openDevices(), before);
  socket.connect("127.0.0.1", 1);
}

TEST_F(PosixSocket, RefusedConnectionEndsOpenTcpAtOnce) {
  Listener listener;
  listener.stop();
  Serial serial;
  const auto start = host.steady();
  EXPECT_EQ(serial.OpenTCP("127.0.0.1", static_cast<std::int16_t>(listener.port)), 252);
  EXPECT_LT(host.steady() - start, greetingTime);
}

/// The time-out of a receiving call on the socket that is connected to a port of this machine.
std::chrono::microseconds receiveTimeOut(std::uint16_t port) {
  constexpr int highest = 1024;
  for (int fd = 0; fd < highest; ++fd) {
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    if (getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &size) != 0 || ntohs(peer.sin_port) != port) {
      continue;
    }
    timeval limit{};
    size = sizeof limit;
    getsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, &size);
    return std::chrono::seconds(limit.tv_sec) + std::chrono::microseconds(limit.tv_usec);
  }
  return {};
}

/// The system ends a receiving call late by up to an eighth of its time-out. A wait for midnight that began
/// in the evening would miss it.
TEST_F(PosixSocket, LongWaitsLeaveRoomForALateTimeOut) {
  const Listener listener;
  socket.connect("127.0.0.1", listener.port);
  const Fd peer = listener.accept();
  goOn([&] { return !socket.isDead() && errorOf([&] { socket.receive(); }) == 0; });
  for (const std::chrono::nanoseconds wait :
       {std::chrono::nanoseconds(101ms), std::chrono::nanoseconds(2s), std::chrono::nanoseconds(1500ms),
        std::chrono::nanoseconds(10h)}) {
    ASSERT_EQ(::write(peer.get(), "x", 1), 1);
    host.block(Source::socket, wait, Messages::held);
    EXPECT_EQ(socket.receive(), "x");
    const auto timeOut = receiveTimeOut(listener.port);
    EXPECT_GT(timeOut, 0s) << "0 would be without end";
    EXPECT_LE(timeOut * 9 / 8, wait) << wait.count();
  }
}

TEST_F(PosixSocket, NothingToWaitForEndsAWaitAtOnce) {
  const auto start = host.steady();
  host.block(Source::socket, longest, Messages::held);
  EXPECT_LT(host.steady() - start, longest);
  const auto again = host.steady();
  Serial serial;
  EXPECT_EQ(serial.OpenTCP("", 1), 252);
  EXPECT_LT(host.steady() - again, greetingTime);
}

float secondsOfToday() {
  const time_t now = time(nullptr);
  tm local{};
  localtime_r(&now, &local);
  return static_cast<float>(local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec);
}

TEST(PosixHost, ClockIsLocalTimeOfDay) {
  const float before = secondsOfToday();
  const float clock = threadHost().clock();
  EXPECT_GE(clock, before);
  EXPECT_LE(clock, secondsOfToday() + 1.1F) << "the system's seconds change a tick late";
}

}  // namespace
}  // namespace velk::platform
