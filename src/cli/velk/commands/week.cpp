#include "cli/velk/things/week.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "cli/shared/files.h"
#include "cli/shared/terminal.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/report/page.h"
#include "cli/velk/report/source.h"
#include "cli/velk/report/week_text.h"

namespace velk::cli {
namespace {

struct WeekOptions : LinkedOptions {
  std::string svg;
  std::string html;
  std::string title;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("--svg", svg, "Write a picture, with the links below it").typeName("FILE");
    line.option("--html", html, "Write a page that needs no other file").typeName("FILE");
    line.option("--title", title, "What the house is called there, in place of the link's or file's name");
  }
};

/// A file that is asked for, opened before the first request.
std::optional<OutputFile> fileOf(const std::string& path) {
  if (path.empty()) return std::nullopt;
  return std::optional<OutputFile>(std::in_place, path);
}

std::string svgOf(HouseView& house, const Source& source) {
  Drawings drawings{drawHeading(source.title, source.from)};
  for (const Chapter& chapter : weekChapters()) {
    if (chapter.draw == nullptr) continue;
    Drawings some = chapter.draw(house, nullptr);
    std::move(some.begin(), some.end(), std::back_inserter(drawings));
  }
  return standAlone(std::move(drawings), source.title + ": the week, and the links");
}

/// The picture, then what happens when.
void print(HouseView& house) {
  const bool halfBlocks = colours() && terminalShowsUtf8();
  std::cout << textOf(lanesOf(momentsOf(house.week(), house.names())), outputWidth(), halfBlocks) << '\n'
            << textOf(marksOf(house.week(), house.names(), true), outputWidth(), halfBlocks);
}

int carryOutWeek(const WeekOptions& options) {
  const LinkOptions link = options.link.required();
  const std::array onOutput{options.svg == standardStream, options.html == standardStream, options.json};
  if (std::count(onOutput.begin(), onOutput.end(), true) > 1) {
    throw std::invalid_argument("standard output takes one of --svg, --html and --json");
  }
  if (!options.title.empty() && options.svg.empty() && options.html.empty()) {
    throw std::invalid_argument("--title needs --svg or --html");
  }
  for (const std::string& written : {options.svg, options.html}) requireApart(link.backup, written);
  auto svg = fileOf(options.svg);
  auto html = fileOf(options.html);
  if (svg && html && svg->isSameAs(*html)) {
    throw std::invalid_argument(options.svg + " and " + options.html +
                                " are one file, which takes only one of them");
  }
  const auto connection = open(link);
  OutputNames names(connection->serial());
  const std::vector<Module> none;
  HouseView house(connection->serial(), names, none, Unreadable::fails);
  if (svg || html) {
    Source source = sourceOf(options.link, link);
    if (!options.title.empty()) source.title = options.title;
    if (svg) svg->write(svgOf(house, source));
    if (html) html->write(pageOf({.title = source.title, .from = {source.from}}, weekChapters(), house));
  }
  if (options.json) {
    std::cout << jsonOf(house.week(), house.serial(), names) << '\n';
  } else if (options.svg.empty() && options.html.empty()) {
    print(house);
  }
  return success;
}

}  // namespace

void addWeek(const CommandLine& velk, Job& job) {
  addCommand<WeekOptions>(velk, job, "week", "Show the week: switch times and simulation",
                          "  velk week --simulate\n  velk week --html week.html\n"
                          "\nEach output that is switched has a lane, where days that are the same share a "
                          "line. The picture is as\n"
                          "wide as the terminal, from 40 to 200 columns, or as COLUMNS says. \"velk report\" "
                          "tells of all the house.\n",
                          carryOutWeek);
}

}  // namespace velk::cli
