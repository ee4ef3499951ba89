#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <thread>

#include "frames.h"
#include "posix/servers.h"

namespace velk::bench {
namespace {

constexpr std::size_t functionAt = 9;
constexpr std::size_t headerSize = 12;
constexpr char login = '\xf0';
constexpr std::size_t stackSize = 65536;

void sendAll(int fd, std::string_view bytes) {
  [[maybe_unused]] const auto sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

void serveConnection(int fd) {
  const int on = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  const std::string reply = tcpExchange.reply();
  std::array<char, 512> buffer{};
  sendAll(fd, greeting);
  for (;;) {
    const auto n = ::recv(fd, buffer.data(), buffer.size(), 0);
    if (n < static_cast<ssize_t>(headerSize)) break;
    if (buffer[functionAt] == login) {
      sendAll(fd, std::string(buffer.data(), functionAt + 1).append(2, '\0'));
    } else if (buffer[tcpExchange.pageAt] != silentPage) {
      sendAll(fd, reply);
    }
  }
  close(fd);
}

void* connectionThread(void* fd) {
  serveConnection(static_cast<int>(reinterpret_cast<std::intptr_t>(fd)));
  return nullptr;
}

[[noreturn]] void serve(int listener) {
  pthread_attr_t small;
  pthread_attr_init(&small);
  pthread_attr_setstacksize(&small, stackSize);
  pthread_attr_setdetachstate(&small, PTHREAD_CREATE_DETACHED);
  for (;;) {
    const int fd = accept(listener, nullptr, nullptr);
    pthread_t thread{};
    if (fd >= 0)
      pthread_create(&thread, &small, connectionThread, reinterpret_cast<void*>(std::intptr_t{fd}));
  }
}

}  // namespace

TcpServer startTcpServer() {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* name = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener, name, size) != 0 || listen(listener, SOMAXCONN) != 0 ||
      getsockname(listener, name, &size) != 0) {
    throw std::runtime_error("no TCP server");
  }
  TcpServer server{.port = ntohs(address.sin_port), .process = Child([=] { serve(listener); })};
  close(listener);
  return server;
}

}  // namespace velk::bench
