#pragma once

#include <string>
#include <vector>

#include "cli/velk/things/event.h"
#include "cli/velk/things/soft_link.h"
#include "cli/velk/things/switch_time.h"
#include "component/serial.h"

/// The week as a picture.
namespace velk::cli {

/// Something that happens in the week.
struct Mark {
  int day;     ///< 0 for Monday
  int minute;  ///< of the day
  bool event;  ///< of the simulation; else a switch time
  std::string text;
};

/// A link with the names that people know.
struct NamedLink {
  SoftLink link;
  std::string destination;  ///< "output 5 Hall ceiling"
  Json json;
};

struct Week {
  std::vector<Mark> marks;
  std::vector<NamedLink> links;
};

Week readWeek(Serial& serial);

/// A line a day, a column each half hour: "#" a switch time, "." an event of the simulation, "*" both; then
/// what happens when.
std::string gridOf(const Week& week);

/// The calendar, with the graph of links below it.
std::string svgOf(const Week& week);

/// A page that needs no other file.
std::string htmlOf(const Week& week);

Json jsonOf(const Week& week);

}  // namespace velk::cli
