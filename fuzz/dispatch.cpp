/// Any sequence of calls through the method table, with ids, counts and types of arguments at will, on one
/// object with a house behind every link.

#include "simulator/house.h"
#include "simulator/house_modules.h"
#include "support/calls.h"
#include "support/links.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velk;
  using namespace velk::fuzz;
  constexpr int mostCalls = 16;
  Input input(data, size);
  simulator::Controller controller(simulator::house());
  simulator::attachModules(controller);
  simulator::LoopbackHost host;
  host.transferTime = std::chrono::milliseconds(1);
  Serial serial(host);
  const auto kind = allLinks.at(input.below(allLinks.size()));
  open(serial, host, kind, [&] { return makeSession(kind, controller); });
  for (int i = 0; i < mostCalls && !input.isEmpty(); ++i) call(serial, input, true);
  return 0;
}
