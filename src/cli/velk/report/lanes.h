#pragma once

#include <string>
#include <vector>

#include "cli/velk/things/week.h"
#include "values/numbers.h"

namespace velk::cli {

constexpr int minutesOfHour = 60;
constexpr int minutesOfDay = hoursOfDay * minutesOfHour;

/// Which of two houses holds a part of a picture.
enum class Side : Byte { both, was, is };

/// Something at a time of a day.
struct Spot {
  int minute = 0;
  bool event = false;
  std::string text;

  friend bool operator==(const Spot&, const Spot&) = default;
};

/// Days on which a lane has the same spots.
struct LaneDays {
  Byte days = 0;
  std::vector<Spot> spots;  ///< in the order of time
  Side side = Side::both;
};

/// The week of what is switched: an output, or an action.
struct Lane {
  std::string title;
  std::vector<LaneDays> rows;  ///< none for a day without spots
};

/// A lane for all that is switched, outputs first.
std::vector<Lane> lanesOf(const std::vector<Moment>& moments);

/// Likewise of two houses: days that are the same in both stand once, and share a line only with such. Those of switch
/// times stand in front of those of events, which seldom change together.
std::vector<Lane> lanesOf(const std::vector<Moment>& was, const std::vector<Moment>& is);

/// "Mon-Fri: switch time 07:30 255 2, simulation 18:15 0 2".
std::string textOf(const LaneDays& row);

}  // namespace velk::cli
