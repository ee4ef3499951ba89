#include "cli/velk/connection/houses.h"

#include "cli/shared/native_text.h"
#include "cli/shared/windows/wide.h"

namespace velk::cli {

std::filesystem::path homeFolder() {
  return wideOf(environment("USERPROFILE").value_or(""));
}

std::filesystem::path configurationFile() {
  return std::filesystem::path(wideOf(environment("APPDATA").value_or(""))) / "velk" / "config.toml";
}

/// The user's folders are closed to others from the start.
bool othersMayRead(const std::filesystem::path& /*file*/) {
  return false;
}

}  // namespace velk::cli
