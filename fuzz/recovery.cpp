/// One transaction at a time with raw replies: it ends within its time limits with a result of a known form,
/// and as soon as the interface behaves, the next transaction on the same link works, whatever came before.

#include "link/transaction.h"
#include "link/wait.h"
#include "support/bench.h"
#include "support/faulty_peer.h"
#include "support/target.h"
#include "values/runtime_error.h"

namespace velk::fuzz {
namespace {

using namespace std::chrono_literals;

/// Three attempts of at most a frame of 23 bytes at 0.1 s each, a break, a reply and a resynchronisation; a
/// line that keeps sending others' frames can prolong it by one resynchronisation each.
std::chrono::milliseconds longest(std::size_t inputSize) {
  return 3 * (2300ms + 110ms + 1000ms + 1100ms) + static_cast<int>(inputSize) * 2200ms;
}

bool isLinkError(std::string_view reply) {
  return reply.size() == 1 && byteValue(reply.front()) >= noMatchingReply;
}

}  // namespace

void run(Input input) {
  const std::size_t size = input.size();
  Bench bench;
  Serial& serial = bench.serial;
  const auto kind = linkOf(input);
  serial.FlgBreak = false;

  Input faults;
  require(bench.open(kind, throughHandsOf(faults)) == 0, "a good link opens");
  const Byte count = input.byte();
  const Byte high = input.byte();
  const Byte low = input.byte();
  const bool isWrite = (input.byte() & 1) != 0;
  const auto wanted = link::dataCount(link::readRequest(count, {}).command);
  faults = input;

  const auto start = bench.host.elapsed();
  try {
    const Bytes reply = isWrite ? serial.WriteCom(count, high, low, "V", Bytes(wanted, 'x'))
                                : serial.ReadCom(count, high, low, "V");
    // Over TCP the length is the reply's own, so that only the serial line can tell.
    if (isSerial(kind)) {
      require(isLinkError(reply) || reply.size() == (isWrite ? kind == LinkKind::fast ? 2 : 1 : wanted + 1),
              "a serial reply has the length that was asked for");
    }
  } catch (const RuntimeError& error) {
    require(error.number() == RuntimeError::deviceFailed && isSerial(kind), "only a port that fails raises");
  }
  require(bench.host.elapsed() - start <= longest(size), "a transaction ends in time");

  faults = {};
  link::pause(bench.host, link::Seconds(10), platform::Messages::dispatched);
  try {
    const Bytes reply = serial.ReadCom(1, 5, 1, "V");
    const bool closed = reply == Bytes(1, character(58));
    require(reply == bench.mode() || closed, "the link works again once the interface behaves");
  } catch (const RuntimeError& error) {
    require(error.number() == RuntimeError::deviceFailed, "only a port that failed goes on failing");
  }
}

}  // namespace velk::fuzz
