/// What a browser, or anybody else, sends to the simulator's page: it is answered or given up, an error has a
/// sentence and changes nothing, and what was changed lies where changes may lie.

#include <memory>

#include "cli/sim/web/page_site.h"
#include "support/target.h"

namespace velk::fuzz {
namespace {

constexpr unsigned good = 200;

/// What nobody changes by hand: requests to modules on their way, and bytes of nothing.
Bytes rest(const simulator::Store& store) {
  constexpr std::size_t area = 65536;
  return store.read({.page = 0, .offset = 0}, 2) + store.read({.page = 0, .offset = 10}, 21) +
         store.read({.area = link::Area::highBlock, .page = 26}, 128) +
         store.read({.area = link::Area::highExternal}, area);
}

/// A house that is as it was at the beginning of each run; its clock is held.
struct Site {
  Site() {
    house.controller().answer(link::writeRequest(1, {.page = 255, .offset = 247}, "\1"));
    start = memory();
  }

  simulator::Store memory() {
    simulator::Store store;
    house.copyMemory(store);
    return store;
  }

  simulator::Watch watch;
  cli::ServedHouse house{cli::smallHouse(), {}, {}, &watch};
  cli::web::PageSite page{house, watch, {}};
  simulator::Store start;
};

}  // namespace

void run(Input input) {
  static auto site = std::make_unique<Site>();
  const auto answer = cli::web::answerTo(input.rest(), site->page);
  const simulator::Store now = site->memory();
  const bool isChanged = now != site->start || !site->watch.faults.list().empty();
  if (!answer || answer->status != good) {
    require(!answer || answer->body.starts_with(R"({"error":")"), "an error has a sentence");
    require(!isChanged, "an error changes nothing");
  }
  require(rest(now) == rest(site->start), "what may not be changed is not");
  if (isChanged) site = std::make_unique<Site>();
}

}  // namespace velk::fuzz
