/// What arrives at the simulator's interfaces, in pieces, with pauses and line breaks. Afterwards, once the
/// line has been quiet, a good request is answered.

#include "link/tcp_frames.h"
#include "support/bench.h"
#include "support/target.h"

namespace velk::fuzz {
namespace {

constexpr link::Request readMode{.command = 0x20, .high = 5, .low = 1, .data = {}};

Bytes goodRequest(LinkKind kind) {
  if (kind == LinkKind::echo) return link::echoFrame(readMode);
  if (kind == LinkKind::fast) return link::fastFrame(readMode, 2);
  const Bytes frame =
      kind == LinkKind::ethernetQ ? link::slashFrame(readMode, 2) : link::fastFrame(readMode, 2);
  const link::TcpRequest request{.data = frame};
  return kind == LinkKind::ethernetQ ? link::requestQ(request) : link::requestS(request);
}

}  // namespace

void run(Input input) {
  Bench bench;
  const auto kind = linkOf(input);
  const auto session = makeSession(kind, bench.controller);
  session->connected();
  while (!input.isEmpty()) {
    constexpr Byte lineBreak = 255;
    constexpr Byte pause = 254;
    const Byte length = input.byte();
    if (length == lineBreak) {
      session->lineBreak();
    } else if (length == pause) {
      session->quiet();
    } else {
      session->received(input.bytes(length));
    }
  }
  session->quiet();
  if (kind == LinkKind::ethernetQ) {
    session->received(link::requestQ({.function = link::tcpLogin, .data = std::string_view("\0\0\0\0", 4)}));
  }
  const auto deliveries = session->received(goodRequest(kind));
  require(!deliveries.empty(), "a good request is answered");
  require(deliveries.back().bytes.find(bench.mode()) != Bytes::npos,
          "the answer holds what the controller holds");
}

}  // namespace velk::fuzz
