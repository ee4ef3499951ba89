#include "windows/bare_client.h"

#include <ws2tcpip.h>

#include <array>
#include <stdexcept>

#include "frames.h"

namespace velk::bench {
namespace {

void require(bool condition, const char* fault) {
  if (!condition) throw std::runtime_error(fault);
}

}  // namespace

BareWinsockClient::BareWinsockClient(std::uint16_t port) {
  WSADATA winsock;
  WSAStartup(MAKEWORD(2, 2), &winsock);
  socket_ = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  require(connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
          "bare client: no connection");
  const BOOL on = TRUE;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  std::array<char, 512> buffer{};
  require(recv(socket_, buffer.data(), buffer.size(), 0) > 0, "bare client: no greeting");
}

BareWinsockClient::~BareWinsockClient() {
  closesocket(socket_);
}

void BareWinsockClient::transact() {
  std::array<char, 512> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by recv
  constexpr std::string_view request = tcpExchange.request;
  constexpr int size = request.size();
  require(send(socket_, request.data(), size, 0) == size, "bare client: send");
  constexpr int expected = tcpExchange.replyHead.size() + data.size();
  require(recv(socket_, buffer.data(), buffer.size(), 0) == expected, "bare client: wrong reply");
}

u_long BareWinsockClient::waiting() const {
  u_long count = 0;
  require(ioctlsocket(socket_, FIONREAD, &count) == 0, "bare client: ioctlsocket");
  return count;
}

void DrainingWinsockClient::transact() {
  require(waiting() == 0, "bare client: a stale answer");
  BareWinsockClient::transact();
}

}  // namespace velk::bench
