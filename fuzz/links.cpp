/// Every method over every link, while the replies go through the fuzzer's hands. Afterwards, with an
/// interface that behaves, the same link works again.

#include "support/links.h"

#include "link/wait.h"
#include "simulator/house.h"
#include "simulator/house_modules.h"
#include "support/calls.h"
#include "support/faulty_peer.h"
#include "support/require.h"
#include "values/runtime_error.h"

namespace velk::fuzz {
namespace {

constexpr std::size_t mostCalls = 8;

/// Lets late replies come in, and a request that was given up half-way be forgotten.
void settle(simulator::LoopbackHost& host) {
  constexpr std::chrono::hours morning(10);
  host.setClock(morning);
  link::pause(host, link::Seconds(10), platform::Messages::dispatched);
}

/// The result of a read of one byte, in the link's settings as they were when it was opened.
Bytes readMode(Serial& serial) {
  try {
    return serial.ReadCom(1, 5, 1, "V");
  } catch (const RuntimeError& error) {
    return {character(255), character(error.number() & 255)};
  }
}

void run(Input input) {
  simulator::Controller controller(simulator::house());
  simulator::attachModules(controller);
  simulator::LoopbackHost host;
  host.transferTime = std::chrono::milliseconds(1);
  Serial serial(host);
  const auto kind = allLinks.at(input.below(allLinks.size()));

  // The calls come first in the input, so that a fault does not change what is called.
  Input calls = input;
  const std::size_t count = 1 + calls.below(mostCalls);
  input.byte();
  Bytes recipes = input.text();
  Input faults = input;
  Input recipe(reinterpret_cast<const std::uint8_t*>(recipes.data()), recipes.size());

  open(serial, host, kind,
       [&] { return std::make_unique<FaultyPeer>(makeSession(kind, controller), faults); });
  const bool fast = serial.NoEcho;
  for (std::size_t i = 0; i < count && !recipe.isEmpty(); ++i) call(serial, recipe, false);

  serial.CloseTCP();
  serial.CloseCom();
  faults = Input(nullptr, 0);
  settle(host);
  serial.SerAddress = 2;
  require(open(serial, host, kind, [&] { return makeSession(kind, controller); }) == 0, "a good link opens");
  require(isSerial(kind) ? serial.NoEcho == fast : serial.TCP, "the link is the one that was opened");
  const Bytes expected = controller.answer({.command = 0x20, .dph = 5, .dpl = 1, .data = {}}).bytes();
  require(readMode(serial) == expected, "a link that is opened anew reads what the controller holds");
}

}  // namespace
}  // namespace velk::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  velk::fuzz::run({data, size});
  return 0;
}
