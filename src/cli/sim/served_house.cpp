#include "cli/sim/served_house.h"

#include <memory>

#include "cli/house/simulated_modules.h"
#include "memory/map.h"
#include "simulator/clock.h"
#include "simulator/house.h"
#include "simulator/house_modules.h"

namespace velk::cli {
namespace {

/// What no file holds: the clock, and requests to modules on their way.
void copyState(const simulator::Store& from, simulator::Store& to) {
  for (const memory::Region& region : memory::regions()) {
    if (region.kind) continue;
    const std::size_t size = region.lastOffset - region.firstOffset + std::size_t{1};
    for (int page = region.firstPage; page <= region.lastPage; ++page) {
      const link::Address at{
          .area = region.area, .page = static_cast<Byte>(page), .offset = region.firstOffset};
      to.write(at, from.read(at, size));
    }
  }
}

simulator::Store startOf(const Backup& backup) {
  simulator::Store store = storeOf(backup.lines);
  copyState(simulator::house(), store);
  return store;
}

}  // namespace

Backup smallHouse() {
  return {.begun = {}, .link = {}, .lines = linesOf(simulator::house()), .modules = {}};
}

ServedHouse::ServedHouse(Backup start, const simulator::Faults& faults, const simulator::Trace& trace,
                         simulator::Watch* watch)
    : backup_(std::move(start)), controller_(startOf(backup_)) {
  controller_.attach(
      std::make_unique<simulator::Clock>([] { return std::chrono::steady_clock::now().time_since_epoch(); }));
  auto modules = simulator::houseModules(simulatedModules(backup_.modules));
  auto mailbox = std::make_unique<simulator::MailboxDevice>(std::move(modules), faults, trace, watch);
  mailbox_ = mailbox.get();
  controller_.attach(std::move(mailbox));
}

void ServedHouse::load(Backup backup) {
  simulator::Store next = storeOf(backup.lines);
  auto modules = simulator::houseModules(simulatedModules(backup.modules));
  controller_.between([&](simulator::Store& store) {
    copyState(store, next);
    store = std::move(next);
    mailbox_->replace(std::move(modules));
  });
  backup_ = std::move(backup);
}

Backup ServedHouse::saved() {
  const State now = state();
  return {.begun = cli::now(),
          .link = "simulate:",
          .complete = true,
          .lines = linesOf(now.store),
          .modules = savedModules(backup_.modules, now.modules)};
}

ServedHouse::State ServedHouse::state() {
  State state;
  controller_.between([&](const simulator::Store& store) {
    state.store = store;
    state.modules = mailbox_->modules();
  });
  return state;
}

void ServedHouse::copyMemory(simulator::Store& store) {
  controller_.between([&](const simulator::Store& memory) { store = memory; });
}

}  // namespace velk::cli
