#include "cli/week.h"

#include "cli/backup/backup_file.h"
#include "cli/commands/command.h"

namespace velk::cli {
namespace {

struct WeekOptions : LinkedOptions {
  std::string svg;
  std::string html;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("--svg", svg, "Write a picture, with the links below it").typeName("FILE");
    line.option("--html", html, "Write a page that needs no other file").typeName("FILE");
  }
};

int carryOutWeek(const WeekOptions& options) {
  const auto connection = open(options.link.required());
  const Week week = readWeek(connection->serial());
  if (!options.svg.empty()) saveText(options.svg, svgOf(week));
  if (!options.html.empty()) saveText(options.html, htmlOf(week));
  if (options.json) {
    std::cout << jsonOf(week) << '\n';
  } else if (options.svg.empty() && options.html.empty()) {
    std::cout << gridOf(week);
  }
  return success;
}

}  // namespace

void addWeek(const CommandLine& velk, Run& run) {
  addCommand<WeekOptions>(velk, run, "week", "Show the week: switch times and simulation",
                          "  velk week --simulate\n  velk week --html week.html\n", carryOutWeek);
}

}  // namespace velk::cli
