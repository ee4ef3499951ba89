/// Traces: any text is read or its lines are told, what was read is written and read back the same. Whatever
/// bytes go over a link, the trace of it has lines that the reader knows.

#include "cli/velk/trace/trace_file.h"
#include "support/target.h"

namespace velk::fuzz {
namespace {

std::string lineOf(const cli::Exchange& exchange) {
  return exchange.request.text() + " -> " + cli::textOf(exchange.reply) + (exchange.late ? " (late)" : "");
}

void requireSame(const cli::Exchange& a, const cli::Exchange& b) {
  require(a.request == b.request && a.late == b.late && cli::textOf(a.reply) == cli::textOf(b.reply),
          "a request reads back the same");
}

void read(const std::string& text) {
  for (const cli::TraceLine& line : cli::parseTrace(text).requests) {
    const cli::TraceText again = cli::parseTrace(lineOf(line.exchange));
    require(again.requests.size() == 1, "what was read is read again");
    requireSame(again.requests.front().exchange, line.exchange);
  }
}

/// What an event is in a trace.
void hold(const cli::WireEvent& event) {
  const std::string line = cli::textOf(event, {});
  require(line.find('\n') == std::string::npos, "an event is one line");
  const cli::TraceText trace = cli::parseTrace(line);
  if (event.exchange) {
    // Raw requests may carry too few data, and replies too many bytes: such a line is told.
    require(trace.requests.size() + trace.odd.size() == 1, "a request is a line of the trace");
    if (!trace.requests.empty()) requireSame(trace.requests.front().exchange, *event.exchange);
  } else {
    require(trace.requests.empty(), "what is no request is not read as one");
    const bool isInstruction = event.text.starts_with("instruction ");
    require(trace.odd.empty() || isInstruction, "a trace has no line that is not known");
  }
}

/// Pieces of bytes in turn: how they go, and how many.
void listen(Input input) {
  cli::Wire wire(hold);
  std::chrono::nanoseconds now(0);
  while (!input.isEmpty()) {
    now += std::chrono::milliseconds(1);
    const Byte how = input.byte();
    const Bytes bytes = input.bytes(how / 8);
    switch (how % 8) {
      case 0:
      case 1:
        wire.sentToSocket(now, bytes);
        break;
      case 2:
        for (const char byte : bytes) {
          wire.sentToPort(now, {&byte, 1});
          wire.received(now, {&byte, 1}, true);
        }
        break;
      case 3:
        wire.sentToPort(now, bytes);
        break;
      case 4:
        wire.note(now, "line break");
        break;
      default:
        wire.received(now, bytes, how % 8 != 5);
    }
  }
  wire.giveUp("no reply");
}

}  // namespace

void run(Input input) {
  listen(input);
  read(input.rest());
}

}  // namespace velk::fuzz
