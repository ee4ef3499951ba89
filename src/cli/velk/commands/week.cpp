#include "cli/velk/things/week.h"

#include <algorithm>
#include <array>
#include <optional>

#include "cli/shared/files.h"
#include "cli/velk/commands/command.h"

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

/// A file that is asked for, opened before the first request.
std::optional<OutputFile> fileOf(const std::string& path) {
  if (path.empty()) return std::nullopt;
  return std::optional<OutputFile>(std::in_place, path);
}

int carryOutWeek(const WeekOptions& options) {
  const LinkOptions link = options.link.required();
  const std::array onOutput{options.svg == standardStream, options.html == standardStream, options.json};
  if (std::count(onOutput.begin(), onOutput.end(), true) > 1) {
    throw std::invalid_argument("standard output takes one of --svg, --html and --json");
  }
  auto svg = fileOf(options.svg);
  auto html = fileOf(options.html);
  const auto connection = open(link);
  const Week week = readWeek(connection->serial());
  if (svg) svg->write(svgOf(week));
  if (html) html->write(htmlOf(week));
  if (options.json) {
    std::cout << jsonOf(week) << '\n';
  } else if (options.svg.empty() && options.html.empty()) {
    std::cout << gridOf(week);
  }
  return success;
}

}  // namespace

void addWeek(const CommandLine& velk, Job& job) {
  addCommand<WeekOptions>(velk, job, "week", "Show the week: switch times and simulation",
                          "  velk week --simulate\n  velk week --html week.html\n", carryOutWeek);
}

}  // namespace velk::cli
