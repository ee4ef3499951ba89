/// Every method over every link, while the replies go through the fuzzer's hands. Afterwards, with an
/// interface that behaves, the same link works again.

#include "link/wait.h"
#include "support/bench.h"
#include "support/calls.h"
#include "support/faulty_peer.h"
#include "support/target.h"
#include "values/runtime_error.h"

namespace velk::fuzz {
namespace {

constexpr std::size_t mostCalls = 8;

/// The result of a read of one byte, in the link's settings as they were when it was opened.
Bytes readMode(Serial& serial) {
  try {
    return serial.ReadCom(1, 5, 1, "V");
  } catch (const RuntimeError& error) {
    return {character(255), character(error.number() & 255)};
  }
}

}  // namespace

void run(Input input) {
  Bench bench;
  Serial& serial = bench.serial;
  const auto kind = linkOf(input);

  // The calls come first in the input, so that a fault does not change what is called.
  const std::size_t count = 1 + input.below(mostCalls);
  const Bytes recipes = input.text();
  Input recipe(recipes);

  bench.open(kind, throughHandsOf(input));
  const bool fast = serial.NoEcho;
  for (std::size_t i = 0; i < count && !recipe.isEmpty(); ++i) call(serial, recipe, false);

  serial.CloseTCP();
  serial.CloseCom();
  // Late replies come in, and a request that was given up half-way is forgotten.
  constexpr std::chrono::hours morning(10);
  bench.host.setClock(morning);
  link::pause(bench.host, link::Seconds(10), platform::Messages::dispatched);
  serial.SerAddress = 2;
  require(bench.open(kind) == 0, "a good link opens");
  require(isSerial(kind) ? serial.NoEcho == fast : serial.TCP, "the link is the one that was opened");
  require(readMode(serial) == bench.mode(), "a link that is opened anew reads what the controller holds");
}

}  // namespace velk::fuzz
