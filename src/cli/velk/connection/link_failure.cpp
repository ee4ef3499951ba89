#include "cli/velk/connection/link_failure.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "cli/velk/connection/port_failure.h"
#include "component/result_codes.h"
#include "platform/host.h"
#include "values/result.h"

namespace velk::cli {
namespace {

struct Explanation {
  Byte result;
  std::string_view sentence;
};

constexpr std::array failedLogins{
    Explanation{noReply, "the interface does not answer the login"},
    Explanation{echoFault, "something else than the answer to the login came"},
};

std::string refusal(const LinkOptions& link) {
  return link.password.empty() ? "the interface asks for a password; give --password"
                               : "the interface refuses the password";
}

std::string whyNoLogin(const LinkOptions& link, Byte result) {
  const auto* const found = std::find_if(failedLogins.begin(), failedLogins.end(),
                                         [&](const Explanation& row) { return row.result == result; });
  return found == failedLogins.end() ? refusal(link) : std::string(found->sentence);
}

std::string whyNoConnection(const platform::Reach& reach) {
  const std::string system = std::system_category().message(reach.error);
  return system + (reach.isRefused ? "; nothing listens on that port" : "; check address and network");
}

/// What is left of the connection tells why nothing greets.
std::string whyNoGreeting(const platform::Socket& socket) {
  const platform::Reach reach = socket.reach();
  switch (reach.stage) {
    case platform::Reach::Stage::lookingUp:
      return socket.isDead() ? "there is no host of that name"
                             : "the look-up of the host's name takes too long; check the network";
    case platform::Reach::Stage::trying:
      return socket.isDead() ? whyNoConnection(reach)
                             : "nobody answers; check address and network, and whether the interface is on";
    case platform::Reach::Stage::connected:
      break;
  }
  if (socket.isDead()) return "it hangs up at once; another program may be connected already";
  return reach.hasSpoken ? "it answers, but is no interface of a controller; check address and port"
                         : "it takes the connection and says nothing; check address and port";
}

}  // namespace

std::string whyNotOpen(const LinkOptions& link, Byte result, bool greeted) {
  if (!link.serial.empty()) return whyNoPort(link.serial, link.baud);
  if (greeted) return whyNoLogin(link, result);
  return result == noReply ? whyNoGreeting(platform::threadHost().socket()) : meaningOf(result);
}

std::string failureToOpen(const LinkOptions& link, Byte result, bool greeted) {
  return "cannot open " + (link.serial.empty() ? link.tcp : link.serial) + ": " +
         whyNotOpen(link, result, greeted) + " (result " + std::to_string(result) + ")";
}

}  // namespace velk::cli
