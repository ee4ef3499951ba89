#include "link/frames.h"

namespace velk::link {
namespace {

/// A frame of a head that fits into the string object itself, and what follows it.
template <std::size_t size>
Bytes joined(const char (&head)[size], std::string_view data, std::string_view tail = {}) {
  Bytes frame(head, size);
  if (!data.empty()) frame += data;
  if (!tail.empty()) frame += tail;
  return frame;
}

}  // namespace

Bytes echoFrame(const Request& r) {
  return joined({'*', character(r.command), character(r.high), character(r.low)}, r.data);
}

Bytes fastFrame(const Request& r, Byte busAddress) {
  if (r.instruction != memoryAccess) return joined({'*', character(r.instruction)}, r.data, "#");
  return joined({'*', character(memoryAccess), character(busAddress), character(r.command), character(r.high),
                 character(r.low)},
                r.data, "#");
}

Bytes slashFrame(const Request& r, Byte busAddress) {
  return joined({'/', character(busAddress), character(r.command), character(r.high), character(r.low)},
                r.data);
}

Bytes frameFor(const Request& request, const Settings& settings) {
  if (!settings.NoEcho) return echoFrame(request);
  if (settings.TCP && settings.isKindQ()) return slashFrame(request, settings.SerAddress);
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
