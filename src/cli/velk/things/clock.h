#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "cli/shared/json.h"
#include "component/serial.h"

namespace velk::cli {

/// The controller's clock, and the PC's at the same moment, in the PC's zone.
struct ClockReading {
  std::tm controller{};              ///< tm_wday as stored: 1 for Monday, 7 for Sunday
  std::tm computer{};                ///< likewise
  std::optional<long> secondsAhead;  ///< of the controller; none when its date does not exist
  bool held = false;                 ///< it stands still, because an update of it broke off
};

ClockReading readClock(Serial& serial);

/// Sets the controller's clock to the PC's time. Nothing is asked again: it would be another time. The
/// `Failure` that it throws tells when the clock stands still now.
void setClock(Serial& serial);

/// "Monday 2024-03-04 10:20:30".
std::string textOf(const std::tm& time);

/// "3 s ahead", "1 h 0 min 5 s behind", "exact"; behind it what to do when the clock is held.
std::string deviationOf(const ClockReading& reading);

/// "summer time" or "standard time".
std::string savingOf(const std::tm& time);

Json jsonOf(const ClockReading& reading);

}  // namespace velk::cli
