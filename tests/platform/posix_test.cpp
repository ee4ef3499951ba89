#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/resource.h>
#include <termios.h>

#include <thread>

#include "component/serial.h"
#include "platform/host.h"
#include "platform/posix/fd.h"
#include "support/bytes.h"

namespace velk::platform {
namespace {

using namespace std::chrono_literals;

using test::errorOf;

std::chrono::nanoseconds cpuTime() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

/// A pseudo terminal whose far end the test holds, mapped to a port number.
class Pty {
 public:
  static constexpr int number = 200;

  Pty() {
    int far = -1;
    int near = -1;
    char name[64];
    EXPECT_EQ(openpty(&far, &near, name, nullptr, nullptr), 0);
    far_ = Fd(far);
    Fd(near).reset();
    mapPort(number, name);
  }
  ~Pty() { mapPort(number, ""); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  [[nodiscard]] int far() const { return far_.get(); }
  void hangUp() { far_.reset(); }

 private:
  Fd far_;
};

/// A listening socket on 127.0.0.1.
class Listener {
 public:
  Listener() : fd_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(fd_.get(), reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(listen(fd_.get(), 4), 0);
    getsockname(fd_.get(), reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
  }
  [[nodiscard]] Fd accept() const { return Fd(::accept(fd_.get(), nullptr, nullptr)); }
  void stop() { fd_.reset(); }

  std::uint16_t port = 0;

 private:
  Fd fd_;
};

class PosixPort : public testing::Test {
 protected:
  Host& host = threadHost();
  SerialPort& port = host.port();
  void TearDown() override {
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
  host.block(Source::port, 1s, Messages::held);
  EXPECT_EQ(port.read(), all);
  EXPECT_EQ(port.read(), "");
  port.setBreak(true);
  port.setBreak(false);
}

TEST_F(PosixPort, ErrorsByNumber) {
  const Pty pty;
  EXPECT_EQ(errorOf([&] { port.close(); }), 8012);
  EXPECT_EQ(errorOf([&] { port.read(); }), 8018);
  EXPECT_EQ(errorOf([&] { port.write("x"); }), 8018);
  EXPECT_EQ(errorOf([&] { port.setBreak(true); }), 8018);
  EXPECT_EQ(errorOf([&] { port.open(0, {}); }), 8002);
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
  host.block(Source::port, 5s, Messages::held);
  EXPECT_EQ(errorOf([&] { port.read(); }), 8020);
  EXPECT_EQ(errorOf([&] { port.write("x"); }), 8020);
  port.close();
}

TEST_F(PosixPort, AnswerIsTakenUpAtOnceAndWaitingCostsNothing) {
  const Pty pty;
  port.open(Pty::number, {});
  const auto start = host.steady();
  const auto cpu = cpuTime();
  host.block(Source::port, 300ms, Messages::held);
  EXPECT_GE(host.steady() - start, 300ms);
  EXPECT_LE(cpuTime() - cpu, 5ms);
  std::thread far([&] {
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(::write(pty.far(), "x", 1), 1);
  });
  const auto again = host.steady();
  host.block(Source::port, 10s, Messages::held);
  EXPECT_LE(host.steady() - again, 2s);
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

class PosixSocket : public testing::Test {
 protected:
  Host& host = threadHost();
  Socket& socket = host.socket();
  void TearDown() override { socket.close(); }

  /// Lets the socket go on until `done` or two seconds have passed.
  template <class Done>
  void goOn(Done done) {
    const auto end = host.steady() + 2s;
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
  for (const std::string& name : {std::string("127.0.0.1"), std::string(), Bytes("a\0b", 3)}) {
    socket.connect(name, listener.port);
    goOn([&] { return socket.isDead(); });
    EXPECT_TRUE(socket.isDead()) << name;
    EXPECT_TRUE(socket.isOpen());
    socket.close();
    EXPECT_FALSE(socket.isOpen());
  }
}

TEST_F(PosixSocket, RefusedConnectionEndsOpenTcpAtOnce) {
  Listener listener;
  listener.stop();
  Serial serial;
  const auto start = host.steady();
  EXPECT_EQ(serial.OpenTCP("127.0.0.1", static_cast<std::int16_t>(listener.port)), 252);
  EXPECT_LE(host.steady() - start, 1s);
}

TEST(PosixHost, ClockIsLocalTimeOfDay) {
  const time_t now = time(nullptr);
  tm local{};
  localtime_r(&now, &local);
  const float expected = static_cast<float>(local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec);
  EXPECT_NEAR(threadHost().clock(), expected, 2);
}

}  // namespace
}  // namespace velk::platform
