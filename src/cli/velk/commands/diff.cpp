#include <algorithm>
#include <array>

#include "cli/velk/backup/controller_backup.h"
#include "cli/velk/backup/difference.h"
#include "cli/velk/backup/identity.h"
#include "cli/velk/commands/command.h"

namespace velk::cli {
namespace {

struct DiffOptions : LinkedOptions {
  std::string a;
  std::string b;
  std::vector<std::string> only;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("A", a, "A backup").required();
    line.option("B", b, "Another one; without it the controller");
    line.option("--only", only, "Compare these sections alone")
        .delimiter(',')
        .typeName("SECTION,...")
        .oneValueEach();
  }
};

/// Whether names of outputs are told beside other things, but not read with them.
bool namesOutputs(const Sections& sections) {
  constexpr auto naming = std::to_array<std::string_view>({"links", "presets", "switch-times", "simulation"});
  return !isSelected(sections, "outputs") &&
         std::any_of(naming.begin(), naming.end(),
                     [&](std::string_view name) { return isSelected(sections, name); });
}

/// The exit status 1 tells that there are differences and nothing else: a controller that refuses or does not
/// answer counts as a link that fails.
Backup readController(const LinkOptions& link, const Backup& like, const Sections& sections) {
  const auto connection = open(link);
  try {
    Serial& serial = connection->serial();
    return readLike(serial, like, sections,
                    namesOutputs(sections) ? readIdentity(serial, like.lines) : Lines());
  } catch (const Failure& failure) {
    throw Failure(failure.status == badResult ? noLink : failure.status, failure.what(), failure.result);
  }
}

int carryOutDiff(const DiffOptions& options) {
  const Sections sections = parseSections(options.only);
  const Backup from = loadBackup(options.a);
  const Backup to =
      options.b.empty() ? readController(options.link.required(), from, sections) : loadBackup(options.b);
  const auto differences = compare(from, to, sections);
  if (options.json) {
    std::cout << jsonOf(differences) << '\n';
  } else {
    for (const Difference& difference : differences) std::cout << textOf(difference) << '\n';
  }
  return differences.empty() ? success : badResult;
}

}  // namespace

void addDiff(const CommandLine& velk, Job& job) {
  addCommand<DiffOptions>(velk, job, "diff",
                          "Tell what differs between two backups, or a backup and the controller",
                          "  velk diff before.json after.json\n"
                          "  velk diff --tcp 192.168.1.20:8445 house.json\n"
                          "  velk diff house.json --only outputs,links --json\n",
                          carryOutDiff);
}

}  // namespace velk::cli
