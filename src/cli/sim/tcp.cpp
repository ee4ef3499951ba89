#include "cli/sim/tcp.h"

#include <array>
#include <stdexcept>
#include <system_error>

namespace velk::cli {
namespace {

/// How long a client may refuse to take anything.
constexpr std::chrono::milliseconds sendPatience{2000};

struct FreeAddress {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

[[noreturn]] void failToListen(const std::string& address, std::uint16_t port, const std::string& why) {
  throw std::runtime_error("cannot listen on " + address + " port " + std::to_string(port) + ": " + why);
}

std::string lastError() {
  return std::system_category().message(net::lastError());
}

OwnedSocket listeningSocket(const std::string& address, std::uint16_t port) {
  net::start();
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICHOST;
  addrinfo* list = nullptr;
  if (getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &list) != 0) {
    failToListen(address, port, "this is no address in digits");
  }
  const std::unique_ptr<addrinfo, FreeAddress> entry(list);
  OwnedSocket socket(::socket(entry->ai_family, SOCK_STREAM, 0));
  if (!socket) failToListen(address, port, lastError());
  net::prepareListener(socket.get());
  if (bind(socket.get(), entry->ai_addr, static_cast<net::AddressSize>(entry->ai_addrlen)) != 0 ||
      listen(socket.get(), SOMAXCONN) != 0) {
    failToListen(address, port, lastError());
  }
  return socket;
}

}  // namespace

std::optional<Bytes> TcpStream::receive(std::chrono::milliseconds longest) {
  if (!net::wait(socket_.get(), net::Readiness::readable, longest)) return Bytes();
  std::array<char, 4096> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by recv
  const auto n = recv(socket_.get(), buffer.data(), buffer.size(), 0);
  if (n <= 0) return std::nullopt;
  return Bytes(buffer.data(), static_cast<std::size_t>(n));
}

void TcpStream::send(std::string_view bytes) {
  while (!bytes.empty() && net::wait(socket_.get(), net::Readiness::writable, sendPatience)) {
    const auto n = ::send(socket_.get(), bytes.data(), static_cast<net::Size>(bytes.size()), net::sendFlags);
    if (n <= 0) return;  // the next receive sees that the client is gone
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
}

Listener::Listener(const std::string& address, std::uint16_t port)
    : socket_(listeningSocket(address, port)) {}

std::uint16_t Listener::port() const {
  sockaddr_storage address{};
  net::AddressSize size = sizeof address;
  getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size);
  // The port lies at the same place for both versions of the protocol.
  return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

std::unique_ptr<TcpStream> Listener::accept(std::chrono::milliseconds longest) {
  if (!net::wait(socket_.get(), net::Readiness::readable, longest)) return nullptr;
  OwnedSocket socket(::accept(socket_.get(), nullptr, nullptr));
  if (!socket) return nullptr;
  net::prepareStream(socket.get());
  return std::make_unique<TcpStream>(std::move(socket));
}

}  // namespace velk::cli
