#pragma once

#include <string>

#include "cli/house/backup_file.h"
#include "cli/velk/connection/link_choice.h"

namespace velk::cli {

/// Which house a page or a picture tells of.
struct Source {
  std::string title;
  std::string from;  ///< where and when it was read
};

/// A backup tells its own time, so that the same file gives the same page.
Source sourceOf(const std::string& path, const Backup& backup);

/// A link that is read now; a backup behind it as above.
Source sourceOf(const LinkChoice& choice, const LinkOptions& link);

}  // namespace velk::cli
