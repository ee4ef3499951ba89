#include "cli/velk/connection/houses.h"

#include <sys/stat.h>

#include "cli/shared/native_text.h"

namespace velk::cli {

std::filesystem::path homeFolder() {
  return environment("HOME").value_or("/");
}

std::filesystem::path configurationFile() {
  const std::filesystem::path folder = environment("XDG_CONFIG_HOME").value_or("");
  // A relative one counts as none.
  return (folder.is_absolute() ? folder : homeFolder() / ".config") / "velk/config.toml";
}

bool othersMayRead(const std::filesystem::path& file) {
  struct stat state {};
  return stat(file.c_str(), &state) == 0 && (state.st_mode & (S_IRGRP | S_IROTH)) != 0;
}

}  // namespace velk::cli
