#include "simulator/serial_sessions.h"

namespace velk::simulator {
namespace {

constexpr std::string_view echoForeign = "*foreign#";

/// A short request ends at its "#"; nothing says how long it may be, but one that goes on is none.
constexpr std::size_t longestShortRequest = 64;

/// Where a fast-mode frame holds the bus address, and where its request starts.
constexpr std::size_t addressInFrame = 2;
constexpr std::size_t requestInFrame = 3;

bool isWholeRequest(std::string_view text) {
  return !text.empty() && text.size() >= requestLength(byteValue(text.front()));
}

}  // namespace

Deliveries EchoSession::received(std::string_view bytes) {
  Deliveries out;
  for (const char byte : bytes) take(byte, out);
  return out;
}

void EchoSession::take(char byte, Deliveries& out) {
  const auto echo = [&out](char heard) { out.push_back({.bytes = Bytes(1, heard)}); };
  if (frame_.empty()) {
    if (byte != '*') return echo(byte);
    plan_ = nextPlan();
  }
  frame_ += byte;
  if (plan_.noEcho == frame_.size()) return forget();
  if (plan_.wrongEcho == frame_.size()) {
    echo(character(~byte & 255));
    return forget();
  }
  echo(byte);
  const std::string_view request = std::string_view(frame_).substr(1);
  if (!isWholeRequest(request)) return;
  append(out, deliver(plan_, answer(requestFrom(request), plan_).bytes(), echoForeign));
  forget();
}

std::optional<std::size_t> memoryFrameLength(std::string_view text) {
  if (text.size() <= requestInFrame) return std::nullopt;
  return requestInFrame + requestLength(byteValue(text[requestInFrame])) + 1;
}

std::optional<FastRequest> fastRequestIn(std::string_view frame) {
  if (frame.back() != '#') return std::nullopt;
  const std::string_view request = frame.substr(requestInFrame, frame.size() - requestInFrame - 1);
  return FastRequest{byteValue(frame[addressInFrame]), requestFrom(request)};
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

std::optional<std::size_t> FastSession::take(std::string_view buffer, Deliveries& out) {
  if (buffer.front() != '*') return std::min(buffer.find('*'), buffer.size());
  if (buffer.size() < 2) return std::nullopt;
  const Byte instruction = byteValue(buffer[1]);
  if (instruction == link::memoryAccess) return takeMemoryRequest(buffer, out);
  if (instruction == link::shortRequest) return takeShortRequest(buffer, out);
  return firstByte;
}

std::optional<std::size_t> FastSession::takeMemoryRequest(std::string_view buffer, Deliveries& out) {
  const auto length = memoryFrameLength(buffer);
  if (!length || buffer.size() < *length) return std::nullopt;
  const auto found = fastRequestIn(buffer.substr(0, *length));
  if (!found) return firstByte;
  if (found->busAddress != options().busAddress) return length;
  const Plan plan = nextPlan();
  const Reply reply = answer(found->request, plan);
  append(out, deliver(plan, fastReply(buffer, reply, plan), foreignFrame(options().busAddress)));
  return length;
}

std::optional<std::size_t> FastSession::takeShortRequest(std::string_view buffer, Deliveries& out) {
  const auto mark = buffer.find('#');
  if (mark == std::string_view::npos && buffer.size() > longestShortRequest) return firstByte;
  if (mark == std::string_view::npos) return std::nullopt;
  const Bytes frame(buffer.substr(0, mark + 1));
  const Plan plan = nextPlan();
  note(isFaulty(plan) ? "short request -> " + withFaults("repeated", plan) : "short request");
  append(out, deliver(plan, frame, foreignFrame(options().busAddress)));
  return frame.size();
}

}  // namespace velk::simulator
