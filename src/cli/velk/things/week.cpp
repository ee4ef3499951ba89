#include "cli/velk/things/week.h"

#include <algorithm>
#include <tuple>

#include "cli/shared/progress.h"
#include "cli/velk/things/soft_link.h"
#include "cli/velk/things/words.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

constexpr int minutesOfHour = 60;

constexpr Byte onlyDay(int day) {
  return static_cast<Byte>(1 << day);
}

std::string clockTime(int minute) {
  return timeOfDay(minute / minutesOfHour, minute % minutesOfHour);
}

int minuteOf(const SwitchTime& time) {
  return time.hour * minutesOfHour + time.minute;
}

int minuteOf(const Event& event) {
  return event.hour * minutesOfHour + byteAt(event.record, 0);
}

/// An action has two bytes, an entry an output in front of them.
Moment momentOf(const SwitchTime& time, const Bytes& entry, OutputNames& names) {
  constexpr std::size_t sizeOfAction = 2;
  Moment moment{.lane = entry, .title = {}, .days = time.days, .minute = minuteOf(time), .text = {}};
  if (entry.size() <= sizeOfAction) {
    moment.title = "action " + std::to_string(byteAt(entry, 0)) + "." + numbers(slice(entry, 1));
    return moment;
  }
  moment.lane.resize(1);
  moment.title = names.titleOf(byteAt(entry, 0));
  moment.text = numbers(slice(entry, 1));
  return moment;
}

int firstOf(Byte days) {
  int day = 0;
  while (day < weekdays && (days >> day & 1) == 0) ++day;
  return day;
}

/// What both have in common but the days becomes one.
void fold(std::vector<Mark>& marks) {
  std::vector<Mark> folded;
  for (Mark& mark : marks) {
    const auto same = std::find_if(folded.begin(), folded.end(), [&](const Mark& other) {
      return std::tie(other.minute, other.event, other.text) ==
                 std::tie(mark.minute, mark.event, mark.text) &&
             (other.days & mark.days) == 0;
    });
    if (same == folded.end()) {
      folded.push_back(std::move(mark));
    } else {
      same->days = static_cast<Byte>(same->days | mark.days);
    }
  }
  marks = std::move(folded);
}

}  // namespace

Week readWeek(Serial& serial, Unreadable unreadable) {
  Week week;
  for (const int block : counted("switch times", 0, switchTimes - 1)) {
    SwitchTime time = readSwitchTime(serial, static_cast<Byte>(block));
    if (isUsed(time)) week.times.push_back(std::move(time));
  }
  for (const int number : counted("simulation", 0, weekdays * hoursOfDay - 1)) {
    const RecordedHour list = readHour(serial, static_cast<Byte>(number / hoursOfDay),
                                       static_cast<Byte>(number % hoursOfDay), unreadable);
    week.events.insert(week.events.end(), list.events.begin(), list.events.end());
    if (!list.readable) week.unreadable.push_back(timeOf(onlyDay(list.day), list.hour * minutesOfHour));
  }
  return week;
}

std::vector<Moment> momentsOf(const Week& week, OutputNames& names) {
  std::vector<Moment> moments;
  for (const SwitchTime& time : week.times) {
    if (!time.readable || firstOf(time.days) == weekdays) continue;
    for (const Bytes& entry : entriesOf(time)) moments.push_back(momentOf(time, entry, names));
  }
  for (const Event& event : week.events) {
    const Byte output = byteAt(event.record, 2);
    moments.push_back({.lane = Bytes(1, character(output)),
                       .title = names.titleOf(output),
                       .days = onlyDay(event.day),
                       .minute = minuteOf(event),
                       .event = true,
                       .text = numbers(slice(event.record, 3))});
  }
  return moments;
}

std::vector<Mark> marksOf(const Week& week, OutputNames& names, bool folded) {
  std::vector<Mark> marks;
  for (const SwitchTime& time : week.times) {
    for (int day = 0; time.readable && day < weekdays; ++day) {
      if ((time.days >> day & 1) == 0) continue;
      marks.push_back({.days = onlyDay(day),
                       .minute = minuteOf(time),
                       .entries = entriesOf(time),
                       .text = actionOf(time, names)});
    }
  }
  for (const Event& event : week.events) {
    marks.push_back({.days = onlyDay(event.day),
                     .minute = minuteOf(event),
                     .event = true,
                     .entries = {Bytes(slice(event.record, 2))},
                     .text = actionOf(event, names)});
  }
  if (folded) fold(marks);
  std::stable_sort(marks.begin(), marks.end(), [](const Mark& a, const Mark& b) {
    return std::pair(firstOf(a.days), a.minute) < std::pair(firstOf(b.days), b.minute);
  });
  return marks;
}

std::string timeOf(Byte days, int minute) {
  return daysOf(days) + " " + clockTime(minute);
}

Json jsonOf(const Week& week, Serial& serial, OutputNames& names) {
  Json marks = Json::array();
  for (const Mark& mark : marksOf(week, names, false)) {
    Json switches = Json::array();
    for (const Bytes& entry : mark.entries) switches.push_back(jsonOfEntry(entry, names));
    marks.push_back({{"day", weekday(firstOf(mark.days))},
                     {"time", clockTime(mark.minute)},
                     {"kind", mark.event ? "simulation" : "switch time"},
                     {"text", mark.text},
                     {"switches", std::move(switches)}});
  }
  Json links = Json::array();
  for (const Byte source : linkSources()) {
    for (const SoftLink& link : readLinks(serial, source)) links.push_back(jsonOf(link, names));
  }
  return {{"marks", std::move(marks)}, {"links", std::move(links)}};
}

}  // namespace velk::cli
