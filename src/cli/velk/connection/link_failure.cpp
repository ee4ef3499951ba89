#include "cli/velk/connection/link_failure.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "component/result_codes.h"
#include "values/result.h"

namespace velk::cli {
namespace {

enum class Stage : Byte { port, greeting, login };

struct Explanation {
  Stage stage;
  Byte result;
  std::string_view sentence;
};

constexpr std::array explanations{
    Explanation{Stage::port, portAlreadyOpen, "the port is open already, here or in another program"},
    Explanation{Stage::port, otherFailure,
                "there is no such port, it may not be opened, or it does not take the rate"},
    Explanation{Stage::greeting, noReply,
                "no interface of a controller answers there; check address, port and network"},
    Explanation{Stage::login, noReply, "the interface does not answer the login"},
    Explanation{Stage::login, echoFault, "something else than the answer to the login came"},
};

std::string refusal(const LinkOptions& link) {
  return link.password.empty() ? "the interface asks for a password; give --password"
                               : "the interface refuses the password";
}

std::string reasonOf(const LinkOptions& link, Stage stage, Byte result) {
  const auto* const found =
      std::find_if(explanations.begin(), explanations.end(),
                   [&](const Explanation& row) { return row.stage == stage && row.result == result; });
  if (found != explanations.end()) return std::string(found->sentence);
  return stage == Stage::login ? refusal(link) : meaningOf(result);
}

}  // namespace

std::string failureToOpen(const LinkOptions& link, Byte result, bool greeted) {
  const Stage tcpStage = greeted ? Stage::login : Stage::greeting;
  const Stage stage = link.serial.empty() ? tcpStage : Stage::port;
  return "cannot open " + (link.serial.empty() ? link.tcp : link.serial) + ": " +
         reasonOf(link, stage, result) + " (result " + std::to_string(result) + ")";
}

}  // namespace velk::cli
