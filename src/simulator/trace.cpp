#include "simulator/trace.h"

#include "memory/map.h"
#include "values/hex.h"

namespace velk::simulator {
std::string describe(const link::Request& request) {
  const link::Address at = addressAt(link::areaOf(request.command), request.high, request.low);
  std::string text = (request.command & link::write) != 0 ? "write " : "read  ";
  text += std::to_string(link::dataCount(request.command));
  text.append(" ").append(nameOf(at.area)) +=
      " " + capitalHex(Bytes{character(request.high), character(request.low)});
  if (!request.data.empty()) text += " " + capitalHex(request.data, " ");
  if ((request.command & link::shortReply) != 0) text += " short";
  const std::string name = memory::nameOf(at);
  return name.empty() ? text : text + "  " + name;
}

std::string describe(const Reply& reply) {
  if (reply.status != carriedOut) return "status " + std::to_string(reply.status);
  return reply.data.empty() ? "ok" : capitalHex(reply.data, " ");
}

bool isFaulty(const Plan& plan) {
  return plan.silent || plan.disconnect || plan.shortTo || plan.wrongHeader || plan.foreign > 0 ||
         plan.late.count() > 0;
}

std::string withFaults(std::string text, const Plan& plan) {
  if (!isFaulty(plan)) return text;
  const bool isSent = !plan.silent && !plan.disconnect;
  std::string faults;
  const auto add = [&](bool is, const std::string& fault) {
    if (is) faults += (faults.empty() ? "" : ", ") + fault;
  };
  add(plan.disconnect, "disconnect");
  add(plan.silent && !plan.disconnect, "silent");
  add(isSent && plan.shortTo, "short=" + std::to_string(plan.shortTo.value_or(0)));
  add(isSent && plan.wrongHeader, "header");
  add(isSent && plan.foreign > 0, "foreign=" + std::to_string(plan.foreign));
  add((isSent || plan.disconnect) && plan.late.count() > 0, "late=" + std::to_string(plan.late.count()));
  return (isSent ? text : "no reply") + " (fault: " + faults + ")";
}

}  // namespace velk::simulator
