#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/house/backup_file.h"

namespace velk::cli {

/// Dated backups in a folder: "backup-20240304T092030Z.json", in UTC, so that the order of names is that of
/// times also where the clocks are put back. Those that a wrong clock has dated more than a day ahead count as the
/// oldest. Other files there are left alone.
class Series {
 public:
  /// Throws `Failure` with `badFile` when there is no such folder: it may be a disk that is missing.
  explicit Series(std::string folder);

  /// The file of a backup that is made now; there is none of that name yet.
  [[nodiscard]] std::string next() const;

  /// Where an unfinished one waits.
  [[nodiscard]] std::string part() const;

  /// The last one's file; empty when there is none.
  [[nodiscard]] std::string last() const;

  /// The last one that is dated in the future; empty when none is.
  [[nodiscard]] std::string lastInFuture() const;

  /// Removes the oldest but for so many, never `written`; returns the files removed. Throws `Failure`.
  [[nodiscard]] std::vector<std::string> prune(std::size_t keep, const std::string& written) const;

 private:
  /// From the oldest on.
  [[nodiscard]] std::vector<std::string> files() const;

  std::string folder_;
};

/// Whether two backups hold the same, but for what a controller's mailbox leaves behind.
bool isSameHouse(const Backup& a, const Backup& b);

}  // namespace velk::cli
