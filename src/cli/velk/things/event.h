#pragma once

#include <string>
#include <vector>

#include "cli/shared/json.h"
#include "cli/velk/things/details.h"
#include "cli/velk/things/output_names.h"
#include "component/serial.h"

namespace velk::cli {

/// A recorded event of the simulation.
struct Event {
  Byte day = 0;  ///< 0 is Monday
  Byte hour = 0;
  Bytes record;  ///< minute, second and three bytes that say what was switched

  friend bool operator==(const Event&, const Event&) = default;
};

/// The events of a weekday and hour: what is written at once.
struct RecordedHour {
  Byte day = 0;
  Byte hour = 0;
  std::vector<Event> events = {};
  bool readable = true;  ///< false for bytes that are no events

  friend bool operator==(const RecordedHour&, const RecordedHour&) = default;
};

/// An hour has no room for more.
constexpr std::size_t eventsOfHour = 51;

/// What bytes that are no events lead to.
enum class Unreadable : bool { fails, isNoted };

/// Reads the events of an hour; records of zeros, as an empty controller holds them, are left out. Throws `Failure`.
RecordedHour readHour(Serial& serial, Byte day, Byte hour, Unreadable unreadable = Unreadable::fails);

/// Writes them by `Simulation`, whose result it returns.
Byte writeHour(Serial& serial, const RecordedHour& list);

/// "18:15:30".
std::string timeOf(const Event& event);

/// "output 3 Kitchen ceiling: 255 2".
std::string actionOf(const Event& event, OutputNames& names);

Json jsonOf(const Event& event, OutputNames& names);
Details detailsOf(const std::vector<Event>& events, OutputNames& names);

}  // namespace velk::cli
