#pragma once

#include <memory>
#include <string>

#include "cli/house/backup_file.h"
#include "component/serial.h"
#include "simulator/controller.h"
#include "simulator/peer.h"

namespace velk::cli {

/// The house of a backup file as a controller in process, with the modules that the file holds. What is
/// written to it stands in the file after `save`.
///
/// What no file holds is refused in words, which pass through `Serial`: std::invalid_argument for the clock
/// and for writes to places that are no configuration, `Failure` with `badResult` for a module. Before the
/// first write the file has to be as velk wrote it, and writable: else a `Failure` with `badFile`.
class HouseFile {
 public:
  /// Reads the file. Throws `Failure` with `badFile`.
  explicit HouseFile(std::string path);
  HouseFile(const HouseFile&) = delete;
  HouseFile& operator=(const HouseFile&) = delete;
  ~HouseFile();

  /// A session with the controller.
  std::unique_ptr<simulator::Peer> session(Byte busAddress);

  /// Replaces the file when something was written, checked and whole; `serial` is open on a session. Throws
  /// `Failure`: also when another program has changed the file meanwhile.
  void save(Serial& serial);

 private:
  class Keeper;

  std::string path_;
  std::string text_;  ///< of the file when it was read
  Backup backup_;
  simulator::Controller controller_;
  Keeper* keeper_;  ///< the controller's
};

}  // namespace velk::cli
