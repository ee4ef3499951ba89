#pragma once

#include <string>

#include "cli/house/backup_file.h"
#include "simulator/controller.h"
#include "simulator/mailbox.h"

namespace velk::cli {

/// The house that is served: a backup in the memory and the modules of a controller, from which it is loaded
/// and to which it is saved. But for the controller it belongs to one thread at a time.
class ServedHouse {
 public:
  /// Starts with a backup; `watch`, when there is one, outlives the house.
  ServedHouse(Backup start, const simulator::Faults& faults, const simulator::Trace& trace,
              simulator::Watch* watch);

  [[nodiscard]] simulator::Controller& controller() { return controller_; }

  /// Puts another house in its place, between two requests of hosts. The clock goes on, and so does a request
  /// to a module.
  void load(Backup backup);

  /// As a complete backup.
  [[nodiscard]] Backup saved();

  /// The memory and the modules as they are at one moment.
  struct State {
    simulator::Store store;
    std::vector<simulator::SimulatedModule> modules;
  };
  [[nodiscard]] State state();

  /// The memory alone.
  void copyMemory(simulator::Store& store);

 private:
  Backup backup_;  ///< what it began with, for what the simulation does not keep
  simulator::Controller controller_;
  simulator::MailboxDevice* mailbox_;
};

/// The small house to start with.
Backup smallHouse();

}  // namespace velk::cli
