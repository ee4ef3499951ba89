#pragma once

#include <string>
#include <vector>

#include "figures.h"

namespace velk::bench {

/// Somebody who carries out transactions: this library, or a client to compare it with.
class Client {
 public:
  virtual ~Client() = default;

  /// One request and its whole reply. Throws std::runtime_error when the reply is not the expected one.
  virtual void transact() = 0;
};

struct Contestant {
  std::string name;
  Client& client;
};

/// How many transactions a race has: in each round every contestant carries out `turn` in a row.
struct Length {
  int rounds = 100;
  int turn = 50;
};

/// Lets the contestants take turns, so that all of them meet the same weather. Figures, for each contestant:
/// RACE.NAME.p50 and .p99 latency in microseconds, RACE.NAME.cpu the CPU time of this thread for one
/// transaction in microseconds.
void race(Figures& figures, const std::string& name, const std::vector<Contestant>& contestants,
          Length length);

}  // namespace velk::bench
