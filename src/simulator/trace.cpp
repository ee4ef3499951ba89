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

}  // namespace velk::simulator
