#include <chrono>
#include <ctime>
#include <filesystem>

#include "cli/backup/memory_reader.h"
#include "cli/backup/progress.h"
#include "cli/backup/restorable_module.h"
#include "cli/commands/command.h"
#include "cli/link_text.h"
#include "values/runtime_error.h"

namespace velk::cli {
namespace {

struct BackupOptions : LinkedOptions {
  std::string file;
  std::vector<std::string> modules;
  bool fresh = false;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("FILE", file, "The file to write").required();
    line.option("--modules", modules, "Serial numbers of modules to back up as well")
        .delimiter(',')
        .typeName("SERIAL,...")
        .oneValueEach();
    line.flag("--fresh", fresh, "Do not continue an unfinished backup");
  }
};

std::string now() {
  const std::time_t time = std::time(nullptr);
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", std::localtime(&time))};
}

/// An unfinished backup of the same link, or a new one.
Backup begin(const BackupOptions& options, const std::string& link) {
  const std::string part = partOf(options.file);
  if (!options.fresh && std::filesystem::exists(part)) {
    Backup found = loadBackup(part);
    if (found.link == link) {
      std::cerr << "velk: continuing the backup begun at " << found.begun << '\n';
      return found;
    }
    std::cerr << "velk: " << part << " is of another link (" << found.link << "); beginning again\n";
  }
  return {.begun = now(), .link = link, .lines = {}, .modules = {}};
}

void read(Serial& serial, const BackupOptions& options, Backup& backup) {
  Progress progress("backup");
  readMissing(
      serial, backup.lines, [](Kind /*kind*/) { return true; },
      [&](std::size_t done, std::size_t total) { progress.show(done, total); });
  backup.modules.clear();
  for (const std::string& number : options.modules) {
    backup.modules.push_back(readModule(serial, number));
    tellObstacle(backup.modules.back());
  }
}

/// Reads; what was read before a failure is kept in the part file.
void readOrKeep(Serial& serial, const BackupOptions& options, Backup& backup) {
  const auto keep = [&] {
    saveBackup(partOf(options.file), backup);
    std::cerr << "velk: " << backup.lines.size() << " lines are kept in " << partOf(options.file)
              << "; the same command goes on from there\n";
  };
  try {
    read(serial, options, backup);
  } catch (const Failure&) {
    keep();
    throw;
  } catch (const RuntimeError&) {
    keep();
    throw;
  }
}

int carryOutBackup(const BackupOptions& options) {
  const LinkOptions link = options.link.required();
  Backup backup = begin(options, nameOf(link));
  const std::size_t before = backup.lines.size();
  const auto connection = open(link);
  watchInterrupts();
  const auto start = std::chrono::steady_clock::now();
  readOrKeep(connection->serial(), options, backup);
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  backup.complete = true;
  saveBackup(options.file, backup);
  std::error_code ignored;
  std::filesystem::remove(partOf(options.file), ignored);
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

void addBackup(const CommandLine& velk, Run& run) {
  addCommand<BackupOptions>(velk, run, "backup", "Save the whole configuration in a file",
                            "  velk backup --tcp 192.168.1.20:8445 --password 1234 house.json\n"
                            "  velk backup house.json --modules 090500,100100\n"
                            "\nA backup that breaks off leaves FILE.part; the same command continues it.\n",
                            carryOutBackup);
}

}  // namespace velk::cli
