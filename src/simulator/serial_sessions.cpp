#include "simulator/serial_sessions.h"

namespace velk::simulator {
namespace {

constexpr std::string_view echoForeign = "*foreign#";

/// A short request ends at its "#"; nothing says how long it may be, but one that goes on is none.
constexpr std::size_t longestShortRequest = 64;

}  // namespace

Deliveries EchoSession::received(std::string_view bytes) {
  Deliveries out;
  for (const char byte : bytes) take(byte, out);
  return out;
}

void EchoSession::take(char byte, Deliveries& out) {
  if (frame_.empty()) {
    if (byte != '*') return out.push_back({.bytes = Bytes(1, byte)});
    plan_ = nextPlan();
  }
  frame_ += byte;
  if (plan_.noEcho == frame_.size()) return forget();
  if (plan_.wrongEcho == frame_.size()) {
    out.push_back({.bytes = Bytes(1, character(~byte & 255))});
    return forget();
  }
  out.push_back({.bytes = Bytes(1, byte)});

  const std::string_view request = std::string_view(frame_).substr(1);
  if (request.empty() || request.size() < requestLength(byteValue(request.front()))) return;
  append(out, deliver(plan_, answer(requestFrom(request), plan_).bytes(), echoForeign));
  forget();
}

FastFrame memoryFrameIn(std::string_view text) {
  if (text.size() <= requestInFrame) return {};
  const std::size_t length = requestInFrame + requestLength(byteValue(text[requestInFrame])) + 1;
  if (text.size() < length) return {};
  return {.length = length, .valid = text[length - 1] == '#'};
}

Bytes fastReply(std::string_view frame, const Reply& reply, const Plan& plan) {
  Bytes text(frame.substr(0, link::headerLength));
  // The instruction, since the Ethernet interfaces' clients look at no other byte of the header.
  if (plan.wrongHeader) text[1] = '\x03';
  return text + reply.bytes() + '#';
}

Bytes foreignFrame(Byte busAddress) {
  return Bytes{'*', '\x02', character(busAddress ^ 1), '\x20', '\x01', '\x02', '\0', '\x05', '#'};
}

std::size_t FastSession::take(std::string_view buffer, Deliveries& out) {
  if (buffer.front() != '*') return std::min(buffer.find('*'), buffer.size());
  if (buffer.size() < 2) return 0;
  const Byte instruction = byteValue(buffer[1]);
  if (instruction == link::memoryAccess) return takeMemoryRequest(buffer, out);
  if (instruction != link::shortRequest) return 1;
  const auto mark = buffer.find('#');
  if (mark == std::string_view::npos) return buffer.size() > longestShortRequest ? 1 : 0;
  const Bytes frame(buffer.substr(0, mark + 1));
  const Plan plan = nextPlan();
  note("short request");
  append(out, deliver(plan, frame, foreignFrame(options().busAddress)));
  return frame.size();
}

std::size_t FastSession::takeMemoryRequest(std::string_view buffer, Deliveries& out) {
  const FastFrame found = memoryFrameIn(buffer);
  if (found.length == 0) return 0;
  if (!found.valid) return 1;
  if (byteValue(buffer[addressInFrame]) != options().busAddress) return found.length;
  const std::string_view request = buffer.substr(requestInFrame, found.length - requestInFrame - 1);
  const Plan plan = nextPlan();
  const Reply reply = answer(requestFrom(request), plan);
  append(out, deliver(plan, fastReply(buffer, reply, plan), foreignFrame(options().busAddress)));
  return found.length;
}

}  // namespace velk::simulator
