#pragma once

#include <chrono>

#include "cli/shared/json.h"
#include "cli/sim/served_house.h"
#include "cli/sim/web/http.h"
#include "simulator/watch.h"

namespace velk::cli::web {

/// What happens in the house, as events for those who listen. Requests are told in words, as many as a browser
/// can show; the rest are counted.
class ChangeFeed {
 public:
  ChangeFeed(ServedHouse& house, simulator::Watch& watch) : house_(house), watch_(watch) {}

  /// From now on; the last requests are told once more.
  void begin();

  /// What happened since then, or since the last time.
  HttpEvents next();

  /// Another house was loaded.
  void houseLoaded() { isLoaded_ = true; }

  [[nodiscard]] Json faults() const;
  [[nodiscard]] Json connections() const;

 private:
  void tellRequests(HttpEvents& events);
  void tellMemory(HttpEvents& events);
  void tellLists(HttpEvents& events);

  ServedHouse& house_;
  simulator::Watch& watch_;
  simulator::Store before_;
  simulator::Store now_;
  std::uint64_t nextRequest_ = 0;
  double allowance_ = 0;  ///< how many requests may be told in words
  std::chrono::steady_clock::time_point last_;
  std::chrono::steady_clock::time_point connectionsTold_;
  std::string toldFaults_;
  std::string toldConnections_;
  bool isLoaded_ = false;
};

/// An event of a stream.
std::string eventText(std::string_view name, const Json& data);

}  // namespace velk::cli::web
