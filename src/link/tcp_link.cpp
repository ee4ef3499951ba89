#include "link/tcp_link.h"

#include "link/tcp_transaction.h"
#include "values/result.h"

namespace velk::link {
namespace {

constexpr Seconds greetingTime(1.5);

/// Bytes of value 0 are a password, blanks are none.
bool isBlank(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

Byte logIn(Link link, std::string& password) {
  password = padded(password, passwordLength, '\0');
  return byteAt(tranceivTcp(link, {.function = tcpLogin, .data = password}), 0);
}

}  // namespace

Byte openTcp(Link link, const std::string& ipAddress, std::int16_t portNumber, std::string& password,
             Byte busAddress) {
  if (isBlank(password)) password.assign(passwordLength, '\0');
  link.settings.NoEcho = true;
  // A signed 16-bit number reaches the upper ports as negative ones.
  link.host.socket().connect(ipAddress, static_cast<std::uint16_t>(portNumber));

  const std::string_view kind = kindOfGreeting(fetchWithin(link.host, greetingTime));
  if (kind.empty()) return noReply;
  link.settings.SoortETH = kind;
  const Byte result = kind == "Q" ? logIn(link, password) : Byte{0};
  const bool fits = busAddress >= lowestBusAddress && busAddress <= highestBusAddress;
  link.settings.SerAddress = fits ? busAddress : defaultBusAddress;
  // Also after a refused login, which the result tells: the interface keeps the connection, hosts may go on.
  link.settings.TCP = true;
  return result;
}

void closeTcp(Link link) {
  link.host.socket().close();
}

}  // namespace velk::link
