#include "cpu_time.h"
#include "frames.h"
#include "posix/sections.h"
#include "posix/servers.h"
#include "velk_client.h"

namespace velk::bench {
namespace {

/// The CPU time of `body` as a part of the time it takes.
template <class Body>
double load(Body body) {
  const auto start = Clock::now();
  const double before = cpuTime();
  body();
  return (cpuTime() - before) / microsecondsSince(start);
}

}  // namespace

void measureWait(Figures& figures) {
  const LineServer server = startFastServer(Pace::full);
  VelkClient velk(server.device, true);
  // One attempt, to a page that nobody answers for, waits one second.
  const Byte page = byteValue(silentPage);
  figures["wait.velk"] = load([&] {
    if (velk.serial().ReadCom(16, page, 0, "V", 1).size() != 1) throw std::runtime_error("an answer");
  });
  figures["wait.busy"] = load([] {
    const auto start = Clock::now();
    while (microsecondsSince(start) < 1e6) {
    }
  });
}

}  // namespace velk::bench
