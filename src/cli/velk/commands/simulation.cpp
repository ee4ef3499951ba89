#include <algorithm>
#include <optional>
#include <stdexcept>

#include "cli/shared/progress.h"
#include "cli/velk/commands/change.h"
#include "cli/velk/things/event.h"
#include "cli/velk/things/typed_entry.h"

namespace velk::cli {
namespace {

struct SimulationOptions : ChangeOptions {
  std::string days;
  std::string hour;
  std::vector<std::string> words;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("DAYS", days, "Only these days, as in Mon, Mon-Fri, weekend or daily");
    line.option("HOUR", hour, "Only this hour of theirs, 0 to 23");
    line.option("set", words,
                "set TIME OUTPUT=A:B...: put these in place of the events of the hour; or clear: remove them")
        .typeName("[set TIME OUTPUT=A:B... | clear]");
  }
};

struct TypedEvent {
  TimeOfDay time;
  TypedEntry entry;
};

/// What the words behind "simulation" say.
struct WantedEvents {
  std::optional<Byte> days;  ///< none: all
  std::optional<Byte> hour;  ///< none: all
  bool changes = false;
  std::vector<TypedEvent> events;
};

[[noreturn]] void refuseEvent(const std::string& typed) {
  throw std::invalid_argument(
      "\"" + typed + "\" is no time and no event: an output with two numbers, as in \"Kitchen=255:2\"");
}

TimeOfDay parseEventTime(const std::string& typed, Byte hour) {
  const auto time = parseTime(typed);
  if (!time) refuseEvent(typed);
  if (time->hour != hour) {
    throw std::invalid_argument("\"" + typed + "\" is not from " + timeOfDay(hour, 0, 0) + " to " +
                                timeOfDay(hour, 59, 59));
  }
  return *time;
}

TypedEvent parseEvent(const std::string& typed, const TimeOfDay& time) {
  auto entry = parseEntry(typed, 2);
  if (!entry) refuseEvent(typed);
  outputNumberOf(entry->output);  // a wrong one is told before the link is opened
  return {time, *std::move(entry)};
}

bool isEarlier(const TypedEvent& a, const TypedEvent& b) {
  return std::pair(a.time.minute, a.time.second) < std::pair(b.time.minute, b.time.second);
}

/// A time is that of all outputs behind it.
std::vector<TypedEvent> parseEvents(const std::vector<std::string>& words, Byte hour) {
  std::vector<TypedEvent> events;
  std::optional<TimeOfDay> time;
  bool isUsed = true;
  for (std::size_t i = 1; i < words.size(); ++i) {
    const bool isTime = words[i].find('=') == std::string::npos;
    const std::optional<TimeOfDay> next = isTime ? parseEventTime(words[i], hour) : time;
    if (isTime ? !isUsed : !time) {
      throw std::invalid_argument("\"" + words[i] +
                                  "\": a time stands in front of the outputs that it is for");
    }
    time = next;
    if (!isTime) events.push_back(parseEvent(words[i], *time));
    isUsed = !isTime;
  }
  if (!isUsed) throw std::invalid_argument("\"" + words.back() + "\": no output stands behind this time");
  if (events.size() > eventsOfHour) {
    throw std::invalid_argument("an hour has room for " + std::to_string(eventsOfHour) + " events");
  }
  std::stable_sort(events.begin(), events.end(), isEarlier);
  return events;
}

WantedEvents parseSimulationWords(const SimulationOptions& options) {
  WantedEvents wanted{.changes = !options.words.empty()};
  if (!options.days.empty() || wanted.changes) {
    wanted.days = parseDays(options.days);
    if (!wanted.days) {
      throw std::invalid_argument("\"" + options.days +
                                  "\" is no day: Mon, Mon-Fri, Sat,Sun, weekdays, weekend, daily");
    }
  }
  if (!options.hour.empty() || wanted.changes) {
    wanted.hour = numberIn(options.hour, options.hour, "an hour", 0, hoursOfDay - 1);
  }
  if (!wanted.changes) return wanted;
  if (options.words.front() == "clear" && options.words.size() == 1) return wanted;
  if (options.words.front() != "set" || options.words.size() == 1) {
    throw std::invalid_argument("expected after the hour: nothing, clear, or set TIME OUTPUT=A:B...");
  }
  wanted.events = parseEvents(options.words, *wanted.hour);
  return wanted;
}

std::vector<Byte> daysIn(const WantedEvents& wanted) {
  std::vector<Byte> days;
  for (Byte day = 0; day < weekdays; ++day) {
    if (!wanted.days || (*wanted.days >> day & 1) != 0) days.push_back(day);
  }
  return days;
}

/// Pairs of day and hour.
std::vector<std::pair<Byte, Byte>> hoursIn(const WantedEvents& wanted) {
  std::vector<std::pair<Byte, Byte>> hours;
  for (const Byte day : daysIn(wanted)) {
    for (Byte hour = wanted.hour.value_or(0); hour <= wanted.hour.value_or(hoursOfDay - 1); ++hour)
      hours.emplace_back(day, hour);
  }
  return hours;
}

/// The wanted hour of each day.
using Hours = std::vector<RecordedHour>;

Shown shownHours(const Hours& hours, OutputNames& names) {
  Shown shown{{}, {{"events", Json::array()}}};
  Json events = Json::array();
  for (const RecordedHour& list : hours) {
    const std::string day = hours.size() == 1 ? "" : weekday(list.day) + " ";
    if (!list.readable) shown.details.push_back({day + "events", "(not readable)"});
    for (const Detail& detail : detailsOf(list.events, names)) {
      shown.details.push_back({day + detail.name, detail.text});
    }
    for (const Event& event : list.events) events.push_back(jsonOf(event, names));
  }
  shown.json["events"] = std::move(events);
  return shown;
}

RecordedHour hourWith(const std::vector<TypedEvent>& typed, Byte day, Byte hour, OutputNames& names) {
  RecordedHour list{.day = day, .hour = hour};
  for (const TypedEvent& event : typed) {
    const Byte output = names.find(event.entry.output);
    list.events.push_back(
        {.day = day,
         .hour = hour,
         .record = Bytes{character(event.time.minute), character(event.time.second), character(output)} +
                   event.entry.bytes});
  }
  return list;
}

Hours readHours(Serial& serial, const WantedEvents& wanted) {
  Hours hours;
  for (const Byte day : daysIn(wanted))
    hours.push_back(readHour(serial, day, *wanted.hour, Unreadable::isNoted));
  return hours;
}

/// Only those that differ.
Byte writeHours(Serial& serial, const Hours& before, const Hours& after) {
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (before[i] == after[i]) continue;
    if (const Byte result = writeHour(serial, after[i]); result != 0) return result;
  }
  return 0;
}

int changeEvents(const SimulationOptions& options, Serial& serial, const WantedEvents& wanted) {
  OutputNames names(serial);
  const Hours before = readHours(serial, wanted);
  Hours after;
  for (const Byte day : daysIn(wanted)) after.push_back(hourWith(wanted.events, day, *wanted.hour, names));
  const std::string days = after.size() == 1 ? weekday(after.front().day) : daysOf(*wanted.days);
  return carryOut(options, {.title = "simulation of " + days + " " + timeOfDay(*wanted.hour, 0),
                            .before = shownHours(before, names),
                            .after = shownHours(after, names),
                            .write = [&] { return writeHours(serial, before, after); },
                            .read = [&] { return shownHours(readHours(serial, wanted), names); }});
}

int carryOutSimulation(const SimulationOptions& options) {
  const WantedEvents wanted = parseSimulationWords(options);
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  if (wanted.changes) return changeEvents(options, serial, wanted);
  OutputNames names(serial);
  Json json = Json::array();
  Table table({"Day", "Time", "Event"});
  for (const auto& [day, hour] : counted("simulation", hoursIn(wanted))) {
    for (const Event& event : readHour(serial, day, hour).events) {
      json.push_back(jsonOf(event, names));
      table.add({weekday(day), timeOf(event), actionOf(event, names)});
    }
  }
  printList(options.json, json, table, "there are no recorded events");
  return success;
}

}  // namespace

void addSimulation(const CommandLine& velk, Job& job) {
  addCommand<SimulationOptions>(
      velk, job, "simulation", "List the recorded events of the simulation, set or clear those of an hour",
      "  velk simulation --simulate\n"
      "  velk simulation Mon 18 --json\n"
      "  velk simulation Mon-Fri 07 set 07:15:30 \"Kitchen ceiling=255:2\" 07:20 7=0:4 --dry-run\n"
      "  velk simulation daily 7 clear\n"
      "\nDays: Mon, Mon-Fri, Sat,Sun, weekdays, weekend, daily. A time is that of all events behind it, and "
      "they\n"
      "are put in its order; an hour has room for 51. An output is its number, its name or a beginning of "
      "it;\n"
      "what the two numbers behind it do is for the output to say, so copy them from an event that does the\n"
      "same.\n",
      carryOutSimulation);
}

}  // namespace velk::cli
