#include "posix/bare_clients.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>

#include <array>
#include <stdexcept>

namespace velk::bench {
namespace {

constexpr int longest = 2000;  // ms

void require(bool condition, const char* fault) {
  if (!condition) throw std::runtime_error(fault);
}

void awaitInput(int fd) {
  pollfd watched{.fd = fd, .events = POLLIN, .revents = 0};
  require(poll(&watched, 1, longest) == 1, "bare client: no reply");
}

platform::Fd openRaw(const std::string& device) {
  platform::Fd fd(open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  termios raw{};
  tcgetattr(fd.get(), &raw);
  cfmakeraw(&raw);
  require(fd && tcsetattr(fd.get(), TCSANOW, &raw) == 0, "bare client: no line");
  return fd;
}

void drain(int fd) {
  std::array<char, 512> rest;  // NOLINT(cppcoreguidelines-pro-type-member-init): discarded
  [[maybe_unused]] const auto n = read(fd, rest.data(), rest.size());
}

void put(int fd, std::string_view bytes) {
  require(write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "bare client: write");
}

/// Fetches until `count` bytes are there; returns how many came.
std::size_t fetch(int fd, std::size_t count) {
  std::array<char, 512> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by read
  std::size_t got = 0;
  while (got < count) {
    awaitInput(fd);
    const auto n = read(fd, buffer.data() + got, buffer.size() - got);
    require(n > 0, "bare client: read");
    got += static_cast<std::size_t>(n);
  }
  return got;
}

}  // namespace

BareTcpClient::BareTcpClient(std::uint16_t port) : fd_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  require(connect(fd_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
          "bare client: no connection");
  const int on = 1;
  setsockopt(fd_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  fcntl(fd_.get(), F_SETFL, O_NONBLOCK);
  awaitInput(fd_.get());
}

void BareTcpClient::transact() {
  std::array<char, 512> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by recv
  const int fd = fd_.get();
  recv(fd, buffer.data(), buffer.size(), MSG_DONTWAIT);
  constexpr std::string_view request = tcpExchange.request;
  require(send(fd, request.data(), request.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(request.size()),
          "bare client: send");
  awaitInput(fd);
  constexpr ssize_t expected = tcpExchange.replyHead.size() + data.size();
  require(recv(fd, buffer.data(), buffer.size(), MSG_DONTWAIT) == expected, "bare client: wrong reply");
}

BareFastClient::BareFastClient(const std::string& device) : fd_(openRaw(device)) {}

void BareFastClient::transact() {
  drain(fd_.get());
  put(fd_.get(), fastExchange.request);
  constexpr std::size_t expected = fastExchange.replyHead.size() + data.size() + 1;
  require(fetch(fd_.get(), expected) == expected, "bare client: wrong reply");
}

BareEchoClient::BareEchoClient(const std::string& device) : fd_(openRaw(device)) {}

void BareEchoClient::transact() {
  drain(fd_.get());
  std::size_t surplus = 0;
  for (const char& byte : echoExchange.request) {
    put(fd_.get(), {&byte, 1});
    surplus = fetch(fd_.get(), 1) - 1;
  }
  constexpr std::size_t expected = 1 + data.size();
  require(surplus + fetch(fd_.get(), expected - surplus) == expected, "bare client: wrong reply");
}

}  // namespace velk::bench
