#include <chrono>

#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/backup/part_file.h"
#include "cli/velk/backup/progress.h"
#include "cli/velk/backup/restorable_module.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/things/module.h"

namespace velk::cli {
namespace {

struct BackupOptions : LinkedOptions {
  std::string file;
  std::vector<std::string> modules;
  bool fresh = false;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("FILE", file, "The file to write; \"-\" is standard output").required();
    line.option("--modules", modules, "Serial numbers of modules to back up as well")
        .delimiter(',')
        .typeName("SERIAL,...")
        .oneValueEach();
    line.flag("--fresh", fresh, "Do not continue an unfinished backup");
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
      [&](std::size_t done, std::size_t total) {
        progress.show(done, total);
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

/// Reads and writes the file; what was read before a failure is kept in the part file.
void readOrKeep(Serial& serial, const BackupOptions& options, Backup& backup, OutputFile& file,
                PartFile& part) {
  try {
    read(serial, options, backup, part);
    backup.complete = true;
    file.write(textOf(backup));
  } catch (const std::exception&) {
    keep(part, backup);
    throw;
  }
  part.remove();
}

int carryOutBackup(const BackupOptions& options) {
  const LinkOptions link = options.link.required();
  if (options.json && options.file == standardStream) {
    throw std::invalid_argument("standard output cannot take the backup and --json");
  }
  // Whether the files can be written is found out before the first request, not after the last.
  OutputFile file(options.file);
  PartFile part(file, options.fresh);
  const auto connection = open(link);
  watchInterrupts();
  Backup backup = begin(connection->serial(), part, nameOf(link));
  const std::size_t before = backup.lines.size();
  const auto start = std::chrono::steady_clock::now();
  readOrKeep(connection->serial(), options, backup, file, part);
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  const std::size_t read = backup.lines.size() - before;
  if (options.json) {
    std::cout << Json{{"file", options.file}, {"lines", read}, {"seconds", seconds}} << '\n';
  } else {
    std::cerr << "velk: " << options.file << ": " << read << " lines of 16 bytes in "
              << static_cast<long>(seconds) << " s\n";
  }
  return success;
}

}  // namespace

void addBackup(const CommandLine& velk, Job& job) {
  addCommand<BackupOptions>(
      velk, job, "backup", "Save the whole configuration in a file",
      "  velk backup --tcp 192.168.1.20:8445 --password 1234 house.json\n"
      "  velk backup house.json --modules 090500,100100\n"
      "  velk backup - | gzip > house.json.gz\n"
      "\nA backup that breaks off leaves FILE.part; the same command continues it, also over\n"
      "another link to the same controller.\n",
      carryOutBackup);
}

}  // namespace velk::cli
