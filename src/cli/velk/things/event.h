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
};

/// The events of a weekday and hour. Records of zeros, as an empty controller holds them, are left out.
std::vector<Event> readEvents(Serial& serial, Byte day, Byte hour);

/// The events of the whole week.
std::vector<Event> readEvents(Serial& serial);

/// "18:15:30".
std::string timeOf(const Event& event);

/// "output 3 Kitchen ceiling: 255 2".
std::string actionOf(const Event& event, OutputNames& names);

Json jsonOf(const Event& event, OutputNames& names);
Details detailsOf(const std::vector<Event>& events, OutputNames& names);

}  // namespace velk::cli
