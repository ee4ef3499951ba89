#pragma once

#include <string>
#include <vector>

namespace velk::cli {

struct SelfCheckOptions {
  bool json = false;
  std::vector<std::string> serial;  ///< two ports whose lines are connected, or none
};

/// Tries the component with hosts of this system and prints what can be sent to those who write it. What it
/// registers for that it takes back; what was registered stays as it is. Returns the exit status.
int checkComponent(const SelfCheckOptions& options);

/// The part of the check that is a program without registration, in a process of its own: creates the
/// component that lies in a folder under a manifest. Returns the exit status.
int useWithoutRegistration(const std::string& manifest, const std::string& folder);

}  // namespace velk::cli
