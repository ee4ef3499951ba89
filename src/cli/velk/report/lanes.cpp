#include "cli/velk/report/lanes.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

#include "cli/velk/things/words.h"

namespace velk::cli {
namespace {

/// Outputs in front of actions.
struct LaneKey {
  std::size_t kind;
  Bytes lane;

  auto operator<=>(const LaneKey&) const = default;
};

struct Days {
  std::string title;
  std::array<std::vector<Spot>, weekdays> spots;
};

bool isBefore(const Spot& a, const Spot& b) {
  return std::tie(a.minute, a.event, a.text) < std::tie(b.minute, b.event, b.text);
}

using LaneMap = std::map<LaneKey, Days>;

LaneMap sorted(const std::vector<Moment>& moments) {
  LaneMap lanes;
  for (const Moment& moment : moments) {
    Days& days = lanes[{moment.lane.size(), moment.lane}];
    days.title = moment.title;
    for (int day = 0; day < weekdays; ++day) {
      if ((moment.days >> day & 1) == 0) continue;
      days.spots.at(static_cast<std::size_t>(day)).push_back({moment.minute, moment.event, moment.text});
    }
  }
  for (auto& [key, days] : lanes) {
    for (std::vector<Spot>& spots : days.spots) std::sort(spots.begin(), spots.end(), isBefore);
  }
  return lanes;
}

/// Equal days become one row.
std::vector<LaneDays> rowsOf(const Days& days) {
  std::vector<LaneDays> rows;
  for (std::size_t day = 0; day < weekdays; ++day) {
    const std::vector<Spot>& spots = days.spots.at(day);
    if (spots.empty()) continue;
    auto same =
        std::find_if(rows.begin(), rows.end(), [&](const LaneDays& row) { return row.spots == spots; });
    if (same == rows.end()) same = rows.insert(rows.end(), {.days = 0, .spots = spots});
    same->days = static_cast<Byte>(same->days | 1 << day);
  }
  return rows;
}

Days only(bool events, Days days) {
  for (std::vector<Spot>& spots : days.spots) {
    std::erase_if(spots, [&](const Spot& spot) { return spot.event != events; });
  }
  return days;
}

/// Equal days of both houses become one row; days that changed likewise become one of each.
std::vector<LaneDays> merged(const Days& was, const Days& is) {
  struct Both {
    LaneDays was;
    LaneDays is;
  };
  std::vector<Both> found;
  for (std::size_t day = 0; day < weekdays; ++day) {
    const std::vector<Spot>& before = was.spots.at(day);
    const std::vector<Spot>& now = is.spots.at(day);
    auto same = std::find_if(found.begin(), found.end(), [&](const Both& both) {
      return both.was.spots == before && both.is.spots == now;
    });
    if (same == found.end()) {
      const bool stayed = before == now;
      same = found.insert(found.end(), {{.spots = before, .side = Side::was},
                                        {.spots = now, .side = stayed ? Side::both : Side::is}});
    }
    same->was.days = same->is.days = static_cast<Byte>(same->is.days | 1 << day);
  }
  std::vector<LaneDays> rows;
  for (Both& both : found) {
    if (both.is.side == Side::is && !both.was.spots.empty()) rows.push_back(std::move(both.was));
    if (!both.is.spots.empty()) rows.push_back(std::move(both.is));
  }
  return rows;
}

}  // namespace

std::vector<Lane> lanesOf(const std::vector<Moment>& moments) {
  std::vector<Lane> lanes;
  for (const auto& [key, days] : sorted(moments)) lanes.push_back({days.title, rowsOf(days)});
  return lanes;
}

std::vector<Lane> lanesOf(const std::vector<Moment>& was, const std::vector<Moment>& is) {
  LaneMap before = sorted(was);
  LaneMap now = sorted(is);
  for (const auto& [key, days] : before) now.try_emplace(key, Days{.title = days.title, .spots = {}});
  std::vector<Lane> lanes;
  for (const auto& [key, days] : now) {
    Lane lane{.title = days.title, .rows = {}};
    for (const bool events : {false, true}) {
      const auto rows = merged(only(events, before[key]), only(events, days));
      lane.rows.insert(lane.rows.end(), rows.begin(), rows.end());
    }
    lanes.push_back(std::move(lane));
  }
  return lanes;
}

std::string textOf(const LaneDays& row) {
  std::string text = daysOf(row.days) + (row.side == Side::both  ? ""
                                         : row.side == Side::was ? " was"
                                                                 : " is");
  const char* gap = ": ";
  for (const Spot& spot : row.spots) {
    text += gap + std::string(spot.event ? "simulation " : "switch time ") +
            timeOfDay(spot.minute / minutesOfHour, spot.minute % minutesOfHour) +
            (spot.text.empty() ? "" : " " + spot.text);
    gap = ", ";
  }
  return text;
}

}  // namespace velk::cli
