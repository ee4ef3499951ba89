#include <chrono>
#include <optional>

#include "cli/shared/progress.h"
#include "cli/velk/backup/identity.h"
#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/backup/part_file.h"
#include "cli/velk/backup/restorable_module.h"
#include "cli/velk/backup/series.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/things/module.h"

namespace velk::cli {
namespace {

constexpr int mostKept = 100'000;

struct BackupOptions : LinkedOptions {
  std::string file;
  std::vector<std::string> modules;
  bool fresh = false;
  int keep = 0;
  bool otherHouse = false;
  bool quiet = false;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("FILE", file, "The file to write; \"-\" is standard output. With --keep the folder")
        .required();
    line.option("--modules", modules, "Serial numbers of modules to back up as well")
        .delimiter(',')
        .typeName("SERIAL,...")
        .oneValueEach();
    line.flag("--fresh", fresh, "Do not continue an unfinished backup");
    const Option keeps = line.option("--keep", keep,
                                     "Write a dated file in the folder FILE if something has changed since "
                                     "the last one, and keep so "
                                     "many of them")
                             .typeName("N")
                             .range(1, mostKept);
    line.flag("--other-house", otherHouse,
              "Go on when the last backup in the folder looks like another house's")
        .needs(keeps);
    line.flag("--quiet", quiet, "Say nothing when all goes well");
  }
};

/// An unfinished backup of the same controller, or a new one. The controller itself is asked: another link
/// may lead to the same one, and the same device to another one, in the next house.
Backup begin(Serial& serial, PartFile& part, const std::string& link) {
  if (std::optional<Backup> found = part.unfinished()) {
    const bool sameLink = found->link == link;
    const Origin origin = originOf(serial, found->lines);
    if (origin == Origin::here || (origin == Origin::unknown && sameLink)) {
      std::cerr << "velk: continuing the backup begun at " << found->begun
                << (sameLink ? "" : " over " + found->link + ", which was of this controller") << '\n';
      found->link = link;
      return *std::move(found);
    }
    part.putAside("it is of another controller (" + found->link + "), or this one was changed since");
  }
  return {.begun = now(), .link = link, .lines = {}, .modules = {}};
}

/// Every few seconds what was read so far is kept: more than that nothing can cost, not even the power.
void read(Serial& serial, const BackupOptions& options, Backup& backup, PartFile& part) {
  using std::chrono::steady_clock;
  constexpr std::chrono::seconds interval{5};
  auto next = steady_clock::now() + interval;
  Progress progress("backup");
  readMissing(
      serial, backup.lines, [](ThingKind /*kind*/) { return true; },
      [&](std::size_t done, std::size_t total, std::size_t kept) {
        if (!options.quiet) progress.show(done, total, kept);
        if (steady_clock::now() < next) return;
        part.save(backup);
        next = steady_clock::now() + interval;
      });
  backup.modules.clear();
  for (const std::string& number : options.modules) {
    backup.modules.push_back(readModule(serial, number));
    tellObstacle(backup.modules.back());
  }
}

/// Keeps what was read for the next call.
void keep(PartFile& part, Backup& backup) {
  if (!part) return;
  backup.complete = false;
  try {
    part.save(backup);
    std::cerr << "velk: " << backup.lines.size() << " lines are kept in " << part.path()
              << "; the same command goes on from there\n";
  } catch (const Failure& failure) {
    std::cerr << "velk: what was read cannot be kept: " << failure.what() << '\n';
  }
}

/// Reads, and carries `use` out with the whole backup; what was read before a failure is kept in the part
/// file.
template <class Use>
void readOrKeep(Serial& serial, const BackupOptions& options, Backup& backup, PartFile& part, Use use) {
  try {
    read(serial, options, backup, part);
    backup.complete = true;
    use();
  } catch (const std::exception&) {
    keep(part, backup);
    throw;
  }
  part.remove();
}

/// What a backup came to.
struct Made {
  std::string file;       ///< the one that holds it
  bool changed = true;    ///< it was written
  std::size_t lines = 0;  ///< that were read
  double seconds = 0;
  std::vector<std::string> removed = {};
};

void report(const Made& made, const BackupOptions& options) {
  if (options.json) {
    Json json{{"file", made.file}, {"lines", made.lines}, {"seconds", made.seconds}};
    if (options.keep != 0) {
      json["changed"] = made.changed;
      json["removed"] = made.removed;
    }
    std::cout << json << '\n';
  } else if (!options.quiet) {
    std::cerr << "velk: " << made.file << ": "
              << (made.changed ? std::to_string(made.lines) + " lines of 16 bytes in " +
                                     std::to_string(static_cast<long>(made.seconds)) + " s"
                               : "nothing has changed since")
              << '\n';
    for (const std::string& file : made.removed) std::cerr << "velk: " << file << ": removed\n";
  }
}

/// The last backup of a series; none when there is none that can be read.
std::optional<Backup> lastOf(const Series& series) {
  const std::string last = series.last();
  if (last.empty()) return std::nullopt;
  try {
    return loadBackup(last);
  } catch (const Failure& failure) {
    std::cerr << "velk: " << failure.what() << '\n';
    return std::nullopt;
  }
}

/// Reads which house the controller is of, before the backups of another one are removed in its favour.
Lines expectHouseOf(Serial& serial, const std::string& last, const Backup& before,
                    const BackupOptions& options) {
  Lines here = readIdentity(serial, before.lines);
  const std::string strangeness = strangenessOf(before.lines, here);
  if (strangeness.empty()) return here;
  std::cerr << "velk: " << last << ": this looks like another house: " << strangeness << '\n';
  if (options.otherHouse) return here;
  throw Failure(wrongUsage,
                options.file + ": each house needs a folder of its own; only --other-house goes on here");
}

void tellWrongDate(const Series& series) {
  const std::string file = series.lastInFuture();
  if (file.empty()) return;
  std::cerr << "velk: " << file
            << ": its date is in the future, as a wrong clock writes it: it counts as older than "
            << "all others\n";
}

int carryOutBackup(const BackupOptions& options) {
  const LinkOptions link = options.link.required();
  if (options.json && options.file == standardStream) {
    throw std::invalid_argument("standard output cannot take the backup and --json");
  }
  requireSerials(options.modules);
  std::optional<Series> series;
  if (options.keep != 0) series.emplace(options.file);
  if (series) tellWrongDate(*series);
  Made made{.file = series ? series->next() : options.file};
  // Whether the files can be written is found out before the first request, not after the last.
  OutputFile file(made.file);
  PartFile part(file, options.fresh, series ? series->part() : std::string());
  const std::optional<Backup> last = series ? lastOf(*series) : std::nullopt;
  const auto connection = open(link);
  watchInterrupts();
  Lines known;
  if (last) known = expectHouseOf(connection->serial(), series->last(), *last, options);
  Backup backup = begin(connection->serial(), part, nameOf(link));
  const std::size_t before = backup.lines.size();
  const auto start = std::chrono::steady_clock::now();
  backup.lines.merge(known);
  readOrKeep(connection->serial(), options, backup, part, [&] {
    made.changed = !last || last->condition != Condition::intact || !isSameHouse(*last, backup);
    if (!made.changed) made.file = series->last();
    if (made.changed) file.write(textOf(backup));
  });
  made.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  made.lines = backup.lines.size() - before;
  if (series) made.removed = series->prune(static_cast<std::size_t>(options.keep), made.file);
  report(made, options);
  return made.changed ? success : unchanged;
}

}  // namespace

void addBackup(const CommandLine& velk, Job& job) {
  addCommand<BackupOptions>(
      velk, job, "backup", "Save the whole configuration in a file",
      "  velk backup --tcp 192.168.1.20:8445 --password 1234 house.json\n"
      "  velk backup house.json --modules 090500,100100\n"
      "  velk backup - | gzip > house.json.gz\n"
      "  velk backup --keep 30 --quiet backups\n"
      "\nA backup that breaks off leaves FILE.part; the same command continues it, also over\n"
      "another link to the same controller. One that cannot be read, is of another controller or of\n"
      "this one before it was changed is put aside. A link is followed, a device or pipe written to.\n",
      carryOutBackup);
}

}  // namespace velk::cli
