#include <algorithm>

#include "cli/shared/files.h"
#include "cli/shared/progress.h"
#include "cli/velk/backup/controller_backup.h"
#include "cli/velk/backup/offline.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/report/page.h"
#include "cli/velk/report/source.h"
#include "cli/velk/things/module.h"

namespace velk::cli {
namespace {

/// Without --json: what a report tells has commands of its own that print it.
struct ReportOptions {
  LinkChoice link;
  std::string a;
  std::string b;
  std::string output;
  std::string title;
  std::vector<std::string> modules;

  void declare(const CommandLine& line) {
    link.declare(line);
    line.option("A", a, "A backup; without it the controller");
    line.option("B", b, "A later one, whose changes since A are marked");
    line.option("-o,--output", output, "The page to write; \"-\" is standard output")
        .required()
        .typeName("FILE");
    line.option("--title", title, "What the house is called, in place of the link's or file's name");
    line.option("--modules", modules, "Serial numbers of modules to read from the controller")
        .delimiter(',')
        .typeName("SERIAL,...")
        .oneValueEach();
  }
};

/// A house, and what a page says of it.
struct Told {
  Backup backup;
  Source source;
  std::vector<Failure> failures = {};  ///< modules that did not answer
};

Told fromFile(const ReportOptions& options, const std::string& path) {
  requireApart(path, options.output);
  Backup backup = loadBackup(path);
  Source source = sourceOf(path, backup);
  return {std::move(backup), std::move(source)};
}

/// Those that are asked for, and those of `like`, each once.
std::vector<std::string> serialsOf(const ReportOptions& options, const Backup* like) {
  std::vector<std::string> serials;
  const auto add = [&](const std::string& serial) {
    if (std::find(serials.begin(), serials.end(), serial) == serials.end()) serials.push_back(serial);
  };
  if (like != nullptr) {
    for (const Module& module : like->modules) add(module.serial);
  }
  for (const std::string& serial : options.modules) add(serial);
  return serials;
}

/// One that does not answer does not cost the page, which took minutes to read.
void readModules(Serial& serial, const std::vector<std::string>& serials, Told& told) {
  for (const std::string& number : counted("modules", serials)) {
    try {
      told.backup.modules.push_back(readModule(serial, number));
    } catch (const Failure& failure) {
      if (!failure.result) throw;
      told.failures.push_back(failure);
      Module silent{.serial = number, .model = {}, .firmware = {}, .record = {}, .obstacle = {}};
      silent.obstacle = "did not answer (result " + std::to_string(*failure.result) + ")";
      told.backup.modules.push_back(std::move(silent));
    }
  }
}

Told fromLink(const ReportOptions& options, const Backup* like) {
  const LinkOptions link = options.link.required();
  if (!link.backup.empty()) return fromFile(options, link.backup);
  const auto connection = open(link);
  Told told{{}, sourceOf(options.link, link)};
  told.backup = readLike(connection->serial(), {}, {});
  readModules(connection->serial(), serialsOf(options, like), told);
  return told;
}

std::string titleOf(const ReportOptions& options, const Told& told) {
  return options.title.empty() ? told.source.title : options.title;
}

std::string pageOf(const ReportOptions& options, const Told& told) {
  Offline offline(told.backup.lines);
  OutputNames names(offline.serial());
  HouseView house(offline.serial(), names, told.backup.modules);
  return pageOf({.title = titleOf(options, told), .from = {told.source.from}}, chapters(), house);
}

std::string pageOf(const ReportOptions& options, const Told& before, const Told& after) {
  Offline then(before.backup.lines);
  Offline now(after.backup.lines);
  OutputNames names(now.serial());
  HouseView was(then.serial(), names, before.backup.modules);
  HouseView is(now.serial(), names, after.backup.modules);
  return pageOf(
      {.title = titleOf(options, after), .from = {"was: " + before.source.from, "is: " + after.source.from}},
      chapters(), is, &was);
}

/// A page, and what it could not tell.
struct Written {
  std::string page;
  std::vector<Failure> failures;
};

Written carriedOut(const ReportOptions& options) {
  const bool linked = options.link.namesLink();
  if (!options.b.empty() && linked) throw std::invalid_argument("two backups take no link");
  if (!options.modules.empty() && !options.a.empty() && !linked) {
    throw std::invalid_argument("--modules needs a link; a backup holds its own");
  }
  if (options.a.empty()) {
    const Told told = fromLink(options, nullptr);
    return {pageOf(options, told), told.failures};
  }
  const Told first = fromFile(options, options.a);
  if (options.b.empty() && !linked) return {pageOf(options, first), {}};
  const Told second = linked ? fromLink(options, &first.backup) : fromFile(options, options.b);
  return {pageOf(options, first, second), second.failures};
}

int carryOutReport(const ReportOptions& options) {
  requireSerials(options.modules);
  OutputFile file(options.output);
  const Written written = carriedOut(options);
  file.write(written.page);
  for (const Failure& failure : written.failures) tell("velk", failure, false);
  return written.failures.empty() ? success : badResult;
}

}  // namespace

void addReport(const CommandLine& velk, Job& job) {
  addCommand<ReportOptions>(
      velk, job, "report", "Write a page that tells all of a house",
      "  velk report --simulate -o house.html\n"
      "  velk report house.json -o house.html --title \"Elm Street 5\"\n"
      "  velk report before.json after.json -o changes.html\n"
      "  velk report --tcp 192.168.1.20:8445 house.json -o since.html\n"
      "\nThe page needs no other file and no script. Two backups, or a backup and a link, are compared: what "
      "was\n"
      "added, removed and changed since the first is marked. A controller is read as \"velk backup\" does. A "
      "module\n"
      "that does not answer is named in the page and told, with exit status 1. There is no --json: outputs, "
      "links, presets, week, modules and diff print what the page tells.\n",
      carryOutReport);
}

}  // namespace velk::cli
