#include "cli/velk/backup/part_file.h"

#include <iostream>
#include <stdexcept>

#include "cli/shared/failure.h"

namespace velk::cli {

PartFile::PartFile(const OutputFile& backup, bool afresh, std::string path) {
  if (!backup.isFile()) return;
  path_ = path.empty() ? backup.path() + ".part" : std::move(path);
  if (!afresh) load();
  file_.emplace(path_, backup.path());
}

void PartFile::load() {
  try {
    const auto text = readFileIfThere(path_);
    if (!text) return;
    unfinished_ = parseBackup(*text);
    if (unfinished_->condition != Condition::intact) return putAside(textOf(unfinished_->condition));
    if (unfinished_->complete) return putAside("the backup in it is not unfinished");
  } catch (const std::invalid_argument& error) {
    putAside(error.what());
  } catch (const Failure& failure) {
    putAside(std::string(failure.what()).substr(path_.size() + 2));  // without the name, which is told anyway
  }
}

void PartFile::putAside(const std::string& why) {
  unfinished_.reset();
  const std::string aside = cli::putAside(path_);
  std::cerr << "velk: " << path_ << ": " << why << "; it is kept as " << aside
            << ", and the backup begins anew\n";
}

void PartFile::save(const Backup& backup) {
  if (file_) file_->write(textOf(backup));
}

void PartFile::remove() noexcept {
  if (file_) file_->remove();
}

}  // namespace velk::cli
