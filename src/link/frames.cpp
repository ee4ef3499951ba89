#include "link/frames.h"

namespace velk::link {
namespace {

Bytes joined(std::initializer_list<int> head, std::string_view data, std::string_view tail = {}) {
  Bytes frame;
  frame.reserve(head.size() + data.size() + tail.size());
  for (const int value : head) frame += character(value);
  return frame.append(data).append(tail);
}

}  // namespace

Byte commandByte(Byte count, std::string_view direction, bool isWrite) {
  return static_cast<Byte>(((count - 1) & countMask) | (count >= 128 ? highBank : 0) |
                           (direction == "V" ? externalArea : 0) | (isWrite ? CommandBit::write : 0));
}

Bytes echoFrame(const Request& r) {
  return joined({'*', r.command, r.dph, r.dpl}, r.data);
}

Bytes fastFrame(const Request& r, Byte busAddress) {
  if (r.instruction != memoryAccess) return joined({'*', r.instruction}, r.data, "#");
  return joined({'*', memoryAccess, busAddress, r.command, r.dph, r.dpl}, r.data, "#");
}

Bytes slashFrame(const Request& r, Byte busAddress) {
  return joined({'/', busAddress, r.command, r.dph, r.dpl}, r.data);
}

Bytes frameFor(const Request& request, const Settings& settings) {
  if (!settings.NoEcho) return echoFrame(request);
  if (settings.TCP && settings.SoortETH == "Q") return slashFrame(request, settings.SerAddress);
  return fastFrame(request, settings.SerAddress);
}

std::size_t expectedReply(const Request& request, bool fastMode) {
  if (hasShortReply(request.command)) return fastMode ? 8 : 1;
  if (!fastMode) return dataCount(request.command) + 1;
  if (request.instruction == shortRequest) return 5;
  return request.instruction == memoryAccess ? dataCount(request.command) + 8 : 0;
}

bool sameHeader(std::string_view frame, std::string_view reply) {
  return frame.substr(0, headerLength) == reply.substr(0, headerLength);
}

}  // namespace velk::link
