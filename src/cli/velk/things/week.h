#pragma once

#include <string>
#include <vector>

#include "cli/velk/things/event.h"
#include "cli/velk/things/output_names.h"
#include "cli/velk/things/switch_time.h"
#include "component/serial.h"

/// What happens when: switch times, and the events of the simulation.
namespace velk::cli {

struct Week {
  std::vector<SwitchTime> times;  ///< those that are used
  std::vector<Event> events;
  std::vector<std::string> unreadable;  ///< hours whose bytes are no events: "Mon 18:00"
};

Week readWeek(Serial& serial, Unreadable unreadable = Unreadable::fails);

/// One thing that is switched at a time of some days.
struct Moment {
  Bytes lane;          ///< what is switched: an output's number, or an action's two bytes
  std::string title;   ///< "output 3 Kitchen ceiling", "action 101.2"
  Byte days = 0;       ///< bit 0 for Monday
  int minute = 0;      ///< of the day
  bool event = false;  ///< of the simulation; else a switch time
  std::string text;    ///< the two bytes that an output is told
};

/// All of the week, an entry of a switch time each; in no order.
std::vector<Moment> momentsOf(const Week& week, OutputNames& names);

/// What a switch time or an event does, on the days on which it does the same at the same time.
struct Mark {
  Byte days = 0;
  int minute = 0;
  bool event = false;
  std::vector<Bytes> entries;  ///< an output's number and two bytes each, or an action
  std::string text;            ///< "output 3 Kitchen ceiling: 255 2; output 7 Bedroom shutter: 0 4"
};

/// In the order of days and times; equal ones of several days are one, a day each when they are not `folded`.
std::vector<Mark> marksOf(const Week& week, OutputNames& names, bool folded);

/// "Mon-Fri 07:30".
std::string timeOf(Byte days, int minute);

/// With the links.
Json jsonOf(const Week& week, Serial& serial, OutputNames& names);

}  // namespace velk::cli
