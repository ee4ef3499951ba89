/// Any sequence of calls through the method table, with ids, counts and types of arguments at will, on one
/// object with a house behind every link.

#include "support/bench.h"
#include "support/calls.h"
#include "support/target.h"

void velk::fuzz::run(Input input) {
  constexpr int mostCalls = 16;
  Bench bench;
  bench.open(linkOf(input));
  for (int i = 0; i < mostCalls && !input.isEmpty(); ++i) call(bench.serial, input, true);
}
