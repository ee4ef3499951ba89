#include "simulator/trace.h"

#include "memory/map.h"

namespace velk::simulator {
namespace {

std::string hex(Byte value) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  return {digits[value >> 4], digits[value & 15]};
}

std::string hexList(std::string_view data) {
  std::string text;
  for (const char c : data) text += (text.empty() ? "" : " ") + hex(byteValue(c));
  return text;
}

}  // namespace

std::string describe(const link::Request& request) {
  const link::Address at = addressAt(link::areaOf(request.command), request.high, request.low);
  std::string text = (request.command & link::write) != 0 ? "write " : "read  ";
  text += std::to_string(link::dataCount(request.command));
  text.append(" ").append(nameOf(at.area)) += " " + hex(request.high) + hex(request.low);
  if (!request.data.empty()) text += " " + hexList(request.data);
  const std::string name = memory::nameOf(at);
  return name.empty() ? text : text + "  " + name;
}

std::string describe(const Reply& reply) {
  if (reply.status != carriedOut) return "status " + std::to_string(reply.status);
  return reply.data.empty() ? "ok" : hexList(reply.data);
}

}  // namespace velk::simulator
