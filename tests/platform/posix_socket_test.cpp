#include <dlfcn.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>

#include <cerrno>
#include <mutex>

#include "support/bytes.h"
#include "support/real_peers.h"
#include "support/system_calls.h"

namespace velk::platform {
namespace {

/// The name "house.test": which ports of 127.0.0.1 it stands for, unknown without any. A look-up waits for
/// the lock.
std::mutex houseLock;
std::vector<std::uint16_t> housePorts;

}  // namespace
}  // namespace velk::platform

/// In front of the system's own.
extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* hints, addrinfo** list) {
  static auto* const own = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
  if (std::string_view(host) != "house.test") return own(host, service, hints, list);
  if ((hints->ai_flags & AI_NUMERICHOST) != 0) return EAI_NONAME;
  EXPECT_EQ(std::pair(hints->ai_flags, hints->ai_socktype), std::pair(AI_NUMERICSERV, int{SOCK_STREAM}));
  const std::lock_guard lock(velk::platform::houseLock);
  for (const std::uint16_t port : velk::platform::housePorts) {
    EXPECT_EQ(own("127.0.0.1", std::to_string(port).c_str(), hints, list), 0);
    list = &(*list)->ai_next;
  }
  return velk::platform::housePorts.empty() ? EAI_NONAME : 0;
}

namespace velk::platform {
namespace {

using namespace std::chrono_literals;
using namespace test;

class PosixSocket : public testing::Test {
 protected:
  void TearDown() override { socket.close(); }

  /// Lets the socket go on until something holds; gives up after a time that no machine needs.
  template <class Done>
  void goOn(Done done) {
    const auto end = host.steady() + 20s;
    while (!done() && host.steady() < end) host.block(Source::socket, 10ms, Messages::dispatched);
    EXPECT_TRUE(done());
  }

  bool isConnected() {
    return errorOf([&] { socket.receive(); }) == 0;
  }

  /// Connects to the listener and returns the other end.
  Fd connect(const std::string& name = "127.0.0.1") {
    socket.connect(name, listener.port);
    goOn([&] { return isConnected(); });
    return listener.accept();
  }

  Host& host = threadHost();
  Socket& socket = host.socket();
  Listener listener;
};

TEST_F(PosixSocket, ConnectsTalksAndEnds) {
  const int devices = openDevices();
  const long descriptors = openDescriptors();
  for (const char* name : {"127.0.0.1", "localhost"}) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(socket.isOpen());
    EXPECT_EQ(errorOf([&] { socket.send("x"); }), 40006);
    EXPECT_EQ(errorOf([&] { socket.receive(); }), 40006);
    Fd peer = connect(name);
    EXPECT_TRUE(socket.isOpen() && !socket.hasData());
    EXPECT_EQ(openDevices(), devices + 1);
    EXPECT_EQ(errorOf([&] { socket.connect(name, listener.port); }), 40020);
    ASSERT_EQ(::write(peer.get(), "h", 1), 1);
    goOn([&] { return socket.hasData(); });
    EXPECT_EQ(socket.receive(), "h");
    EXPECT_FALSE(socket.hasData());
    EXPECT_EQ(socket.receive(), "");
    EXPECT_EQ(socket.reach().stage, Reach::Stage::connected);
    socket.send("x");
    char byte = 0;
    EXPECT_EQ(::read(peer.get(), &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
    ASSERT_EQ(::write(peer.get(), "last", 4), 4);
    peer.reset();
    goOn([&] { return socket.isDead(); });
    goOn([&] { return openDescriptors() <= descriptors; });  // what is dead holds nothing
    const auto start = host.steady();
    host.block(Source::socket, 20s, Messages::held);
    EXPECT_LT(host.steady() - start, 20s) << "nothing more can come";
    EXPECT_TRUE(socket.hasData() && socket.isOpen());
    EXPECT_EQ(socket.receive(), "last");
    EXPECT_EQ(errorOf([&] { socket.receive(); }), 40006);
    EXPECT_EQ(errorOf([&] { socket.send("x"); }), 40006);
    EXPECT_EQ(errorOf([&] { socket.connect(name, listener.port); }), 40020);
    socket.close();
  }
  const Fd peer = connect();
  ASSERT_EQ(::write(peer.get(), "x", 1), 1);
  goOn([&] { return socket.hasData(); });
  socket.close();
  EXPECT_FALSE(socket.hasData()) << "what had come is dropped";
  char byte = 0;
  EXPECT_EQ(::read(peer.get(), &byte, 1), 0) << "the peer is told";
  std::thread([&] { threadHost().socket().connect("127.0.0.1", listener.port); }).join();
  EXPECT_EQ(openDevices(), devices) << "a thread that ends closes its socket";
}

TEST_F(PosixSocket, WhatNobodyAnswersIsDead) {
  Listener stopped;
  stopped.stop();
  for (const auto& [name, port, error] : {std::tuple(Bytes("127.0.0.1"), stopped.port, ECONNREFUSED),
                                          {Bytes(), listener.port, 0},
                                          {Bytes("127.0.0.1\0b", 11), listener.port, 0},
                                          {Bytes("house.test"), listener.port, 0}}) {
    socket.connect(name, port);
    goOn([&] { return socket.isDead(); });
    EXPECT_EQ(socket.reach().stage, error == 0 ? Reach::Stage::lookingUp : Reach::Stage::trying) << name;
    EXPECT_EQ(socket.reach().error, error) << name;
    EXPECT_TRUE(socket.isOpen()) << "it has to be closed: " << name;
    socket.close();
  }
  const int before = openDevices();
  const Watch watch([](const Call& call) -> Answer {
    if (call.number != SYS_eventfd2) return {};
    return -EMFILE;
  });
  EXPECT_EQ(errorOf([&] { socket.connect("localhost", 1); }), 7) << "a look-up that cannot be started";
  EXPECT_FALSE(socket.isOpen());
  EXPECT_EQ(openDevices(), before);
  EXPECT_EQ(errorOf([&] { socket.connect("127.0.0.1", 1); }), 0) << "digits need no look-up";
}

/// A look-up is waited for, and may outlive the attempt; its addresses are tried in their order.
TEST_F(PosixSocket, ANameMayHaveSeveralAddresses) {
  const long before = openDescriptors();
  Listener stopped;
  Listener further;
  housePorts = {stopped.port, listener.port, further.port};
  stopped.stop();
  {
    const std::lock_guard lock(houseLock);
    socket.connect("house.test", 1);
    const auto start = host.steady();
    host.block(Source::socket, 20ms, Messages::held);
    EXPECT_GE(host.steady() - start, 20ms);
    EXPECT_EQ(errorOf([&] { socket.send("x"); }), 40006);
  }
  goOn([&] { return isConnected(); });
  const Fd peer = listener.accept();
  goOn([&] { return openDescriptors() <= before + 3; });  // the connection, its peer and the further listener
  socket.close();
  {
    const std::lock_guard lock(houseLock);
    socket.connect("house.test", 1);
    socket.close();
  }
  goOn([&] { return openDescriptors() <= before + 2; });
  const std::lock_guard lock(houseLock);
  housePorts.clear();
}

/// The system ends a receiving call late by up to an eighth of its time-out, and a wait for midnight that
/// began in the evening would miss it: the call may take three quarters of a wait at most, and the rest is
/// polled. A time-out that fits stays.
TEST_F(PosixSocket, AWaitIsAPollOrAReceivingCallWithATimeOut) {
  int fd = -1;
  {
    const Watch watch([&](const Call& call) -> Answer {
      if (call.number != SYS_ppoll) return {};
      EXPECT_EQ(call.at<pollfd>(0).events, POLLOUT);
      fd = call.at<pollfd>(0).fd;
      return 0;
    });
    socket.connect("127.0.0.1", listener.port);
    host.block(Source::socket, 10ms, Messages::held);
    EXPECT_FALSE(isConnected()) << "the poll has not seen it";
  }
  goOn([&] { return isConnected(); });
  const Fd peer = listener.accept();
  const auto option = [&](int level, int name, auto value) {
    socklen_t size = sizeof value;
    EXPECT_EQ(getsockopt(fd, level, name, &value, &size), 0);
    return value;
  };
  EXPECT_NE(option(IPPROTO_TCP, TCP_NODELAY, 0), 0) << "requests are small and waited for";
  EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
  const struct {
    std::chrono::nanoseconds wait;
    bool polled;
    double timeOut;  ///< of receiving calls, in seconds
  } rows[] = {{100ms, true, 0},     {100'000'001ns, false, 0.0625},
              {2400ms, false, 1.5}, {2s, false, 1.5},
              {3s, false, 1.5},     {3'000'000'002ns, false, 1.875},
              {2400ms, false, 1.5}, {1'999'999'996ns, false, 1.25},
              {10h, false, 22500}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.wait.count());
    for (const int error : {EAGAIN, EINTR}) {
      bool polled = false;
      const Watch watch([&](const Call& call) -> Answer {
        if (call.number == SYS_ppoll) {
          EXPECT_EQ(call.at<pollfd>(0).events, POLLIN);
          polled = call.at<timespec>(2).tv_nsec == 100'000'000;
          return -EINTR;
        }
        if (call.number != SYS_recvfrom) return {};
        EXPECT_EQ(call.arguments[3], 0) << "it blocks";
        return -error;
      });
      host.block(Source::socket, row.wait, Messages::held);
      const auto limit = option(SOL_SOCKET, SO_RCVTIMEO, timeval{});
      EXPECT_EQ(polled, row.polled);
      EXPECT_NEAR(double(limit.tv_sec) + double(limit.tv_usec) / 1e6, row.timeOut, 0.01);
    }
  }
  EXPECT_FALSE(socket.isDead()) << "a wait that ends, or that a signal cuts short, ends no connection";
  const Watch watch([](const Call& call) -> Answer {
    if (call.number != SYS_recvfrom) return {};
    errno = EAGAIN;  // of an earlier call
    return 0;
  });
  host.block(Source::socket, 1s, Messages::held);
  EXPECT_TRUE(socket.isDead()) << "the peer has hung up";
}

TEST_F(PosixSocket, MoreThanABufferHoldsComesAndGoesWhole) {
  Bytes much(8'000'000, '\0');  // more than the system keeps for a peer that does not read
  for (std::size_t i = 0; i < much.size(); ++i) much[i] = character(static_cast<int>(i * 7 + i / 1024));
  const Fd peer = connect();
  std::thread far;
  const auto peerReads = [&] {
    Bytes received(much.size(), '\0');
    EXPECT_EQ(::recv(peer.get(), received.data(), received.size(), MSG_WAITALL), 8'000'000);
    EXPECT_TRUE(received == much);
    EXPECT_EQ(::send(peer.get(), much.data(), much.size(), 0), 8'000'000);
  };
  int sends = 0;
  {
    const Watch watch([&](const Call& call) -> Answer {
      if (call.number == SYS_sendto && ++sends == 1) return -EINTR;
      if (call.number != SYS_ppoll || far.joinable()) return {};
      if (sends == 1) return -EINTR;
      far = std::thread(peerReads);
      return {};
    });
    EXPECT_EQ(errorOf([&] { socket.send(much); }), 0);
  }
  Bytes received;
  goOn([&] {
    received += socket.receive();
    return received.size() >= much.size();
  });
  EXPECT_TRUE(received == much);
  far.join();
}

TEST_F(PosixSocket, ASendThatNobodyTakesEndsTheConnection) {
  const linger atOnce{.l_onoff = 1, .l_linger = 0};
  for (const bool gone : {false, true}) {
    Fd peer = connect();
    setsockopt(peer.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    if (gone) peer.reset();
    const Watch watch([](const Call& call) -> Answer {
      if (call.number != SYS_ppoll) return {};
      EXPECT_EQ(call.at<pollfd>(0).events, POLLOUT);
      EXPECT_EQ(call.at<timespec>(2).tv_sec, 2);
      return 0;
    });
    EXPECT_EQ(errorOf([&] { socket.send(gone ? "x" : Bytes(16'000'000, 'm')); }), 40006);
    EXPECT_TRUE(socket.isDead());
    socket.close();
  }
}

}  // namespace
}  // namespace velk::platform
