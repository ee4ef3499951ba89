#include "cli/velk/things/week.h"

#include <algorithm>
#include <array>

#include "cli/shared/progress.h"
#include "cli/velk/things/words.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

constexpr int minutesOfHour = 60;
constexpr int slotMinutes = 30;
constexpr int slots = hoursOfDay * minutesOfHour / slotMinutes;

void addSwitchTimes(Serial& serial, OutputNames& names, std::vector<Mark>& marks) {
  for (const int block : counted("switch times", 0, switchTimes - 1)) {
    const SwitchTime time = readSwitchTime(serial, static_cast<Byte>(block));
    for (int day = 0; time.readable && day < weekdays; ++day) {
      if ((time.days >> day & 1) == 0) continue;
      marks.push_back({day, time.hour * minutesOfHour + time.minute, false, actionOf(time, names)});
    }
  }
}

void addEvents(Serial& serial, OutputNames& names, std::vector<Mark>& marks) {
  for (const Event& event : readEvents(serial)) {
    marks.push_back(
        {event.day, event.hour * minutesOfHour + byteAt(event.record, 0), true, actionOf(event, names)});
  }
}

void addLinks(Serial& serial, OutputNames& names, std::vector<NamedLink>& links) {
  for (const Byte source : counted("links", linkSources())) {
    for (const SoftLink& link : readLinks(serial, source)) {
      links.push_back({link, named(destinationOf(link), destinationName(link, names)), jsonOf(link, names)});
    }
  }
}

std::string timeOf(const Mark& mark) {
  return timeOfDay(mark.minute / minutesOfHour, mark.minute % minutesOfHour);
}

/// The rows of the grid, a character each half hour.
using Rows = std::array<std::string, weekdays>;

Rows rowsOf(const Week& week) {
  Rows rows;
  rows.fill(std::string(slots, ' '));
  for (const Mark& mark : week.marks) {
    char& cell = rows.at(static_cast<std::size_t>(mark.day))
                     .at(static_cast<std::size_t>(std::min(mark.minute / slotMinutes, slots - 1)));
    const char sign = mark.event ? '.' : '#';
    cell = cell == ' ' || cell == sign ? sign : '*';
  }
  return rows;
}

}  // namespace

Week readWeek(Serial& serial) {
  Week week;
  OutputNames names(serial);
  addSwitchTimes(serial, names, week.marks);
  addEvents(serial, names, week.marks);
  std::stable_sort(week.marks.begin(), week.marks.end(), [](const Mark& a, const Mark& b) {
    return std::pair(a.day, a.minute) < std::pair(b.day, b.minute);
  });
  addLinks(serial, names, week.links);
  return week;
}

std::string gridOf(const Week& week) {
  std::string text = "     ";
  for (int hour = 0; hour < hoursOfDay; hour += 3) text += timeOfDay(hour, 0) + " ";
  text += '\n';
  int day = 0;
  for (const std::string& row : rowsOf(week)) text += weekday(day++).substr(0, 3) + " |" + row + "|\n";
  text += "     # switch time   . simulation   * both\n\n";
  for (const Mark& mark : week.marks) {
    text +=
        weekday(mark.day).substr(0, 3) + " " + timeOf(mark) + (mark.event ? " . " : " # ") + mark.text + "\n";
  }
  return text;
}

Json jsonOf(const Week& week) {
  Json marks = Json::array();
  for (const Mark& mark : week.marks) {
    marks.push_back({{"day", weekday(mark.day)},
                     {"time", timeOf(mark)},
                     {"kind", mark.event ? "simulation" : "switch time"},
                     {"text", mark.text}});
  }
  Json links = Json::array();
  for (const NamedLink& link : week.links) links.push_back(link.json);
  return {{"marks", std::move(marks)}, {"links", std::move(links)}};
}

}  // namespace velk::cli
