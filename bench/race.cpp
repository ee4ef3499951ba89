#include "race.h"

#include "cpu_time.h"

namespace velk::bench {
namespace {

struct Result {
  Samples latencies;
  double cpu = 0;
};

void takeTurn(Client& client, int count, Result& result) {
  const double before = cpuTime();
  for (int i = 0; i < count; ++i) {
    const auto start = Clock::now();
    client.transact();
    result.latencies.push_back(microsecondsSince(start));
  }
  result.cpu += cpuTime() - before;
}

}  // namespace

void race(Figures& figures, const std::string& name, const std::vector<Contestant>& contestants,
          Length length) {
  std::vector<Result> results(contestants.size());
  for (int round = 0; round < length.rounds; ++round) {
    for (std::size_t i = 0; i < contestants.size(); ++i) {
      const std::size_t next = (i + static_cast<std::size_t>(round)) % contestants.size();
      // The first one warms up what the contestant before has pushed out of the caches.
      contestants[next].client.transact();
      takeTurn(contestants[next].client, length.turn, results[next]);
    }
  }
  for (std::size_t i = 0; i < contestants.size(); ++i) {
    const std::string prefix = name + "." + contestants[i].name;
    Samples& latencies = results[i].latencies;
    figures[prefix + ".p50"] = percentile(latencies, 0.5);
    figures[prefix + ".p99"] = percentile(latencies, 0.99);
    figures[prefix + ".cpu"] = results[i].cpu / static_cast<double>(latencies.size());
  }
}

}  // namespace velk::bench
