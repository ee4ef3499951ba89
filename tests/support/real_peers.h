#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <pty.h>

#include <array>
#include <filesystem>
#include <memory>
#include <thread>
#include <utility>

#include "platform/host.h"
#include "platform/posix/fd.h"
#include "simulator/peer.h"

/// Far ends on the system's own sockets and pseudo terminals.
namespace velk::test {

using platform::Fd;

/// A pseudo terminal whose far end the test holds, mapped to a port number.
class Pty {
 public:
  static constexpr int number = 200;

  Pty() {
    int far = -1;
    int near = -1;
    std::array<char, 64> name{};
    EXPECT_EQ(openpty(&far, &near, name.data(), nullptr, nullptr), 0);
    far_ = Fd(far);
    Fd(near).reset();
    platform::mapPort(number, name.data());
  }
  ~Pty() { platform::mapPort(number, ""); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  [[nodiscard]] int far() const { return far_.get(); }
  Fd take() { return std::move(far_); }

 private:
  Fd far_;
};

/// How many descriptors the process has open.
inline long openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// A listening socket on 127.0.0.1.
class Listener {
 public:
  Listener() : fd_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
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

/// What becomes of a connection once its far end has given some good answers.
struct Ending {
  enum How { never, closed, reset } how = never;
  int answers = 0;         ///< how many times it answers well before
  std::size_t length = 0;  ///< how many bytes of the next answer still come
};

/// Answers on a descriptor as a peer does, until the ending or until the other side hangs up.
inline void play(Fd fd, simulator::Peer& peer, const Ending& ending) {
  const auto send = [&](const std::vector<simulator::Delivery>& deliveries, std::size_t longest) {
    Bytes all;
    for (const auto& delivery : deliveries) {
      std::this_thread::sleep_for(delivery.after);
      all += delivery.bytes;
    }
    all = all.substr(0, longest);
    EXPECT_EQ(::write(fd.get(), all.data(), all.size()), static_cast<ssize_t>(all.size()));
  };
  std::array<char, 1024> buffer{};
  const auto receive = [&] { return ::read(fd.get(), buffer.data(), buffer.size()); };

  send(peer.connected(), Bytes::npos);
  int left = ending.how == Ending::never ? -1 : ending.answers;
  auto last = std::chrono::steady_clock::now();
  for (auto n = receive(); n > 0; n = receive()) {
    const auto now = std::chrono::steady_clock::now();
    if (now - std::exchange(last, now) >= simulator::frameGap) peer.quiet();
    const auto deliveries = peer.received({buffer.data(), static_cast<std::size_t>(n)});
    send(deliveries, left == 0 ? ending.length : Bytes::npos);
    if (left == 0) break;
    if (left > 0) --left;
  }
  if (ending.how == Ending::reset) {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(fd.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  }
}

}  // namespace velk::test
