#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/velk/doctor/windows/check_report.h"
#include "cli/velk/doctor/windows/child.h"
#include "cli/velk/doctor/windows/registrar.h"

/// The programs that a check starts.
namespace velk::cli {

using Words = std::vector<std::wstring>;

constexpr const char* simulatorPassword = "pass";

/// A simulated controller of this project.
class SimulatorProgram {
 public:
  /// Returns once it serves the interfaces. Throws `Failure` when it does not.
  SimulatorProgram(const std::filesystem::path& program, const Words& interfaces);

  /// The port of the interface "tcp Q" or "tcp S".
  [[nodiscard]] std::string portOf(const std::string& kind) const;

 private:
  Child child_;
};

/// What a host is told of a link, and how that is called.
struct HostLink {
  std::string name;
  Words words;
};

/// Writes what script hosts run; returns the file.
std::filesystem::path writeHostScript(const std::filesystem::path& folder);

/// A script host goes through the methods of the component.
Finding checkScriptHost(const Side& side, const std::filesystem::path& script, const HostLink& link);

/// A program whose manifest, which is written to a folder, names the component creates it.
Finding checkWithoutRegistration(const Side& side, const std::filesystem::path& folder);

}  // namespace velk::cli
