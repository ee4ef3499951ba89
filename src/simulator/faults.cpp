#include "simulator/faults.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string>

#include "values/digits.h"

namespace velk::simulator {
namespace {

constexpr unsigned noEnd = std::numeric_limits<unsigned>::max();

constexpr std::array kinds{
    FaultKind{"status", "N", -1, 255, "refuse the request with status N",
              [](Plan& plan, int n) { plan.status = static_cast<Byte>(n); }},
    FaultKind{"silent", "", 0, 0, "do not reply", [](Plan& plan, int /*none*/) { plan.silent = true; }},
    FaultKind{"late", "MS", -1, 3'600'000, "reply MS milliseconds later",
              [](Plan& plan, int ms) { plan.late = std::chrono::milliseconds(ms); }},
    FaultKind{"short", "N", -1, 65535, "send only the first N bytes of the reply",
              [](Plan& plan, int n) { plan.shortTo = static_cast<std::size_t>(n); }},
    FaultKind{"header", "", 0, 0, "reply with a wrong header",
              [](Plan& plan, int /*none*/) { plan.wrongHeader = true; }},
    FaultKind{"foreign", "N", 1, 100, "send N frames of others before the reply (1)",
              [](Plan& plan, int n) { plan.foreign = static_cast<std::size_t>(n); }},
    FaultKind{"no-echo", "K", 1, 255, "echo mode: lose byte K of the request (1)",
              [](Plan& plan, int k) { plan.noEcho = static_cast<std::size_t>(k); }},
    FaultKind{"wrong-echo", "K", 1, 255, "echo mode: echo byte K of the request wrongly (1)",
              [](Plan& plan, int k) { plan.wrongEcho = static_cast<std::size_t>(k); }},
    FaultKind{"disconnect", "", 0, 0, "end the connection",
              [](Plan& plan, int /*none*/) { plan.disconnect = true; }},
    FaultKind{"stuck", "", 0, 0, "module: leave the trigger set",
              [](Plan& plan, int /*none*/) { plan.stuck = true; }, Counts::moduleRequests},
    FaultKind{"busy", "N", -1, 65535, "module: clear the trigger after N polls",
              [](Plan& plan, int n) { plan.busy = static_cast<unsigned>(n); }, Counts::moduleRequests},
    FaultKind{"pending", "N", -1, 65535, "module: give the reply code after N polls of it",
              [](Plan& plan, int n) { plan.pending = static_cast<unsigned>(n); }, Counts::moduleRequests},
    FaultKind{"code", "N", -1, 255, "module: refuse with reply code N",
              [](Plan& plan, int n) { plan.code = static_cast<Byte>(n); }, Counts::moduleRequests},
};

[[noreturn]] void fail(std::string_view text, const std::string& why) {
  throw std::invalid_argument("fault \"" + std::string(text) + "\": " + why);
}

const FaultKind& kindNamed(std::string_view name, std::string_view text) {
  const auto* const found =
      std::find_if(kinds.begin(), kinds.end(), [&](const FaultKind& kind) { return kind.name == name; });
  if (found == kinds.end()) fail(text, "there is no kind \"" + std::string(name) + "\"");
  return *found;
}

int argumentOf(const FaultKind& kind, std::optional<std::string_view> given, std::string_view text) {
  if (!given) {
    if (kind.fallback < 0)
      fail(text, "\"" + std::string(kind.name) + "\" needs =" + std::string(kind.argument));
    return kind.fallback;
  }
  if (kind.argument.empty()) fail(text, "\"" + std::string(kind.name) + "\" takes no number");
  const auto value = wholeNumber<unsigned>(*given);
  if (!value || *value > static_cast<unsigned>(kind.highest)) {
    fail(text, std::string(kind.argument) + " must be a number from 0 to " + std::to_string(kind.highest));
  }
  return static_cast<int>(*value);
}

using Requests = std::pair<unsigned, unsigned>;

/// The first and the last request of "*", "3", "5-" or "2-4"; none for anything else.
std::optional<Requests> requestsOf(std::string_view which) {
  if (which == "*") return Requests(1, noEnd);
  const auto dash = which.find('-');
  const auto first = wholeNumber<unsigned>(which.substr(0, dash));
  if (!first) return std::nullopt;
  if (dash == std::string_view::npos) return Requests(*first, *first);
  if (dash + 1 == which.size()) return Requests(*first, noEnd);
  const auto last = wholeNumber<unsigned>(which.substr(dash + 1));
  if (!last || *last < *first) return std::nullopt;
  return Requests(*first, *last);
}

}  // namespace

std::span<const FaultKind> faultKinds() {
  return kinds;
}

Fault parseFault(std::string_view text) {
  const auto at = text.find('@');
  if (at == std::string_view::npos) fail(text, "the form is KIND[=N]@WHICH, for example silent@2");
  const std::string_view what = text.substr(0, at);
  const auto equals = what.find('=');
  const FaultKind& kind = kindNamed(what.substr(0, equals), text);
  std::optional<std::string_view> given;
  if (equals != std::string_view::npos) given = what.substr(equals + 1);
  const auto requests = requestsOf(text.substr(at + 1));
  if (!requests) fail(text, "behind @ stands a request (3), a range (2-4, 5-) or *");
  const auto [first, last] = *requests;
  return {.kind = &kind, .argument = argumentOf(kind, given, text), .first = first, .last = last};
}

void apply(const Fault& fault, unsigned request, Counts counts, Plan& plan) {
  if (fault.kind->counts != counts) return;
  if (request >= fault.first && request <= fault.last) fault.kind->apply(plan, fault.argument);
}

Plan Faults::planFor(unsigned request, Counts counts) const {
  Plan plan;
  for (const Fault& fault : faults_) apply(fault, request, counts, plan);
  return plan;
}

}  // namespace velk::simulator
