#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/velk/doctor/component_state.h"
#include "platform/windows/handle.h"

namespace velk::cli {

/// What hosts of one bitness need.
struct Side {
  int bits;
  std::filesystem::path programs;  ///< the folder of the system's own programs of this bitness
  std::filesystem::path library;   ///< the component
  std::filesystem::path velk;      ///< this tool; need not be there
  std::string lack;                ///< why nothing can be tried; empty when it can
};

/// A side for each bitness of this system.
std::vector<Side> sidesOf(const ComponentState& state);

/// Registers the component and takes that back, in the worst case when the next check starts: a journal in a
/// folder of the user's tells what is to be taken back before it is there.
class Registrar {
 public:
  /// Throws `Failure` when a check is under way already.
  explicit Registrar(std::vector<Side> sides);
  /// Takes back what is left, and removes the folder.
  ~Registrar();
  Registrar(const Registrar&) = delete;
  Registrar& operator=(const Registrar&) = delete;

  /// For the files of a check; goes with this object.
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

  /// Whether an earlier check has left something to be taken back.
  [[nodiscard]] bool isPending() const { return !entries_.empty(); }

  /// Why this failed; empty if it did not. Nothing may be registered anywhere before.
  std::string add(const Side& side, Scope scope);

  /// Takes back all that was registered here and is still there. What failed; empty for nothing.
  std::string takeBack();

 private:
  void readJournal();
  void writeJournal();
  [[nodiscard]] const Side& sideOf(int bits) const;
  [[nodiscard]] std::string takeBack(const Registration& entry) const;

  std::vector<Side> sides_;
  std::filesystem::path folder_;
  platform::Handle journal_;  ///< open for nobody else
  std::vector<Registration> entries_;
};

/// Whether anything of the component is in the registry, be it a rest.
bool isAnythingRegistered();

}  // namespace velk::cli
