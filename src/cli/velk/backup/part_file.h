#pragma once

#include <optional>
#include <string>

#include "cli/house/backup_file.h"
#include "cli/shared/files.h"

namespace velk::cli {

/// FILE.part beside a backup, in which an unfinished one waits to be continued. A backup that goes to a
/// device, a pipe or standard output has none.
class PartFile {
 public:
  /// Reads what is there, unless the backup begins afresh. What cannot be read or believed is put aside under
  /// another name, since it may be a night's work all the same, and that is told on standard error. Throws
  /// `Failure` when the file could not be written later.
  ///
  /// @param path of the part; without it the backup's name with ".part" behind it
  PartFile(const OutputFile& backup, bool afresh, std::string path = {});

  /// The unfinished backup that was there.
  [[nodiscard]] const std::optional<Backup>& unfinished() const { return unfinished_; }

  /// Gives the file another name and tells why on standard error. Throws `Failure`.
  void putAside(const std::string& why);

  /// Replaces what it holds. Throws `Failure`.
  void save(const Backup& backup);

  void remove() noexcept;

  /// Whether there is such a file, and its name.
  explicit operator bool() const { return file_.has_value(); }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  void load();

  std::string path_;
  std::optional<Backup> unfinished_;
  std::optional<OutputFile> file_;
};

}  // namespace velk::cli
