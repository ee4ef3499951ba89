#include "cli/velk/backup/controller_backup.h"

#include "cli/shared/progress.h"
#include "cli/velk/backup/describe.h"
#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/things/module.h"

namespace velk::cli {

Backup readLike(Serial& serial, const Backup& backup, const Sections& sections, Lines read) {
  watchInterrupts();
  Backup now;
  now.lines = std::move(read);
  {
    Progress progress("reading");
    readMissing(
        serial, now.lines, [&](ThingKind kind) { return isSelected(sections, sectionOf(kind)); },
        [&](std::size_t done, std::size_t total, std::size_t kept) { progress.show(done, total, kept); });
  }
  if (!isSelected(sections, "modules")) return now;
  for (const Module& module : backup.modules) now.modules.push_back(readModule(serial, module.serial));
  return now;
}

}  // namespace velk::cli
