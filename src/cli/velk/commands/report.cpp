#include "cli/shared/files.h"
#include "cli/velk/backup/controller_backup.h"
#include "cli/velk/backup/offline.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/report/page.h"

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
  std::string name;
  std::string from;
};

std::string nameOfFile(const std::string& path) {
  constexpr std::string_view ending = ".json";
  std::string name = path.substr(path.find_last_of("/\\") + 1);
  if (name.ends_with(ending) && name != ending) name.resize(name.size() - ending.size());
  return name;
}

Told fromFile(const ReportOptions& options, const std::string& path) {
  requireApart(path, options.output);
  Backup backup = loadBackup(path);
  std::string from = path;
  if (!backup.begun.empty()) from += ", saved " + backup.begun;
  if (!backup.link.empty()) from += " from " + backup.link;
  return {std::move(backup), nameOfFile(path), std::move(from)};
}

std::string titleOf(const LinkChoice& choice, const LinkOptions& link) {
  if (!choice.house().empty()) return choice.house();
  return link.simulate ? "The simulated house" : nameOf(link);
}

/// With the modules that are asked for, and those of `like`.
Told fromLink(const ReportOptions& options, const Backup* like) {
  const LinkOptions link = options.link.required();
  if (!link.backup.empty()) return fromFile(options, link.backup);
  const std::string name = nameOf(link);
  const auto connection = open(link);
  Backup wanted;
  if (like != nullptr) wanted.modules = like->modules;
  for (const std::string& serial : options.modules) {
    wanted.modules.push_back({.serial = serial, .model = {}, .firmware = {}, .record = {}, .obstacle = {}});
  }
  Told told{{}, titleOf(options.link, link), name + ", read " + now()};
  told.backup = readLike(connection->serial(), wanted, {});
  return told;
}

std::string titleOf(const ReportOptions& options, const Told& told) {
  return options.title.empty() ? told.name : options.title;
}

std::string pageOf(const ReportOptions& options, const Told& told) {
  Offline offline(told.backup.lines);
  OutputNames names(offline.serial());
  HouseView house(offline.serial(), names, told.backup.modules);
  return pageOf({.title = titleOf(options, told), .from = {told.from}}, chapters(), house);
}

std::string pageOf(const ReportOptions& options, const Told& before, const Told& after) {
  Offline then(before.backup.lines);
  Offline now(after.backup.lines);
  OutputNames names(now.serial());
  HouseView was(then.serial(), names, before.backup.modules);
  HouseView is(now.serial(), names, after.backup.modules);
  return pageOf({.title = titleOf(options, after), .from = {"was: " + before.from, "is: " + after.from}},
                chapters(), is, &was);
}

std::string carriedOut(const ReportOptions& options) {
  const bool linked = options.link.namesLink();
  if (!options.b.empty() && linked) throw std::invalid_argument("two backups take no link");
  if (!options.modules.empty() && !options.a.empty() && !linked) {
    throw std::invalid_argument("--modules needs a link; a backup holds its own");
  }
  if (options.a.empty()) return pageOf(options, fromLink(options, nullptr));
  const Told first = fromFile(options, options.a);
  if (!options.b.empty()) return pageOf(options, first, fromFile(options, options.b));
  if (linked) return pageOf(options, first, fromLink(options, &first.backup));
  return pageOf(options, first);
}

int carryOutReport(const ReportOptions& options) {
  OutputFile file(options.output);
  file.write(carriedOut(options));
  return success;
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
      "added, removed and changed since the first is marked. A controller is read as \"velk backup\" does. "
      "There\n"
      "is no --json: outputs, links, presets, week, modules and diff print what the page tells.\n",
      carryOutReport);
}

}  // namespace velk::cli
