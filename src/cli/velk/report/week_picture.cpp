#include <algorithm>
#include <sstream>

#include "cli/velk/report/drawing.h"
#include "cli/velk/report/pictures.h"
#include "cli/velk/things/words.h"

namespace velk::cli {
namespace {

constexpr int left = 68;
constexpr int dayWidth = 280;
constexpr int quarterWidth = dayWidth / 4;
constexpr int titleHeight = 38;  ///< with the hours
constexpr int barHeight = 12;
constexpr int labelHeight = 12;
constexpr int halfHeight = barHeight + labelHeight;  ///< of a row: switch times, or events
constexpr int lineHeight = 12;
constexpr int rowGap = 10;

int xOf(int minute) {
  return left + std::clamp(minute, 0, minutesOfDay) * dayWidth / minutesOfDay;
}

std::string clockTime(int minute) {
  return timeOfDay(minute / minutesOfHour, minute % minutesOfHour);
}

/// Spots that meet in the picture.
struct Cluster {
  int first;
  int last;
  int count = 1;
  std::string text;  ///< of the only one

  [[nodiscard]] int from() const { return std::min(xOf(first) - 3, pictureWidth - least()); }
  [[nodiscard]] int to() const { return std::max(xOf(last) + 3, from() + least()); }
  [[nodiscard]] int least() const { return count == 1 ? 6 : 6 + widthOf(std::to_string(count)) + 2; }
  [[nodiscard]] int middle() const { return (from() + to()) / 2; }
  [[nodiscard]] std::string time() const {
    return clockTime(first) + (first == last ? "" : "-" + clockTime(last));
  }
};

/// A mark touches the one before it when they would overlap.
std::vector<Cluster> clustersOf(const std::vector<Spot>& spots, bool events) {
  std::vector<Cluster> clusters;
  for (const Spot& spot : spots) {
    if (spot.event != events) continue;
    if (!clusters.empty() && xOf(spot.minute) - 3 <= clusters.back().to()) {
      clusters.back().last = spot.minute;
      ++clusters.back().count;
    } else {
      clusters.push_back({.first = spot.minute, .last = spot.minute, .text = spot.text});
    }
  }
  return clusters;
}

std::string tipOf(const Cluster& cluster, Byte days, bool events) {
  return daysOf(days) + " " + cluster.time() + ", " +
         (cluster.count == 1 ? std::string(events ? "simulation" : "switch time")
                             : std::to_string(cluster.count) + (events ? " events" : " switch times")) +
         (cluster.count == 1 && !cluster.text.empty() ? ": " + cluster.text : "");
}

/// The bars of a half row, each with its time where there is room for it.
void drawHalf(Element& group, const LaneDays& row, bool events, int axis) {
  const int bar = events ? axis + 2 : axis - 1 - barHeight;
  const int label = events ? axis + 2 + barHeight + labelHeight - 2 : axis - 4 - barHeight;
  int written = left - 12;
  for (const Cluster& cluster : clustersOf(row.spots, events)) {
    Element mark = rectangle(events ? "v" : "t", cluster.from(), bar, cluster.to() - cluster.from(),
                             barHeight, events ? barHeight / 2 : 1);
    Element spot("g");
    spot.add(tip(tipOf(cluster, row.days, events))).add(std::move(mark));
    if (cluster.count > 1) {
      spot.add(words("n m", cluster.middle(), bar + barHeight - 2, std::to_string(cluster.count)));
    }
    group.add(std::move(spot));
    for (const std::string& time : {cluster.time(), clockTime(cluster.first)}) {
      const int half = widthOf(time) / 2;
      const int middle = std::clamp(cluster.middle(), left + half - 12, pictureWidth - half);
      if (middle - half < written) continue;
      group.add(words("m", middle, label, time));
      written = middle + half + 2;
      break;
    }
  }
}

bool hasAny(const LaneDays& row, bool events) {
  return std::any_of(row.spots.begin(), row.spots.end(),
                     [&](const Spot& spot) { return spot.event == events; });
}

/// The days, in lines of whole names; below them which house it is. Returns where that ends.
int drawLabel(Element& group, const LaneDays& row, int y) {
  std::vector<std::string> lines{""};
  std::istringstream days(daysOf(row.days));
  for (std::string day; days >> day;) {
    std::string& line = lines.back();
    if (widthOf(line + day) > left - 8) {
      lines.push_back(day);
    } else {
      line += (line.empty() ? "" : " ") + day;
    }
  }
  const int above = static_cast<int>(lines.size() - 1) * lineHeight / 2;
  y -= above;
  for (const std::string& line : lines) {
    group.add(words("", 0, y, line));
    y += lineHeight;
  }
  if (row.side != Side::both) {
    group.add(words("w", 0, y, row.side == Side::was ? "\u2212 was" : "+ is"));
    y += lineHeight;
  }
  return y - lineHeight + 2;
}

/// Returns where the next row begins.
int drawRow(Element& picture, const LaneDays& row, int top) {
  const int axis = top + (hasAny(row, false) ? halfHeight + 1 : 2);
  const int bottom = axis + (hasAny(row, true) ? halfHeight + 2 : 2);
  Element group =
      row.side == Side::both ? Element("g") : Element("g", {{"class", row.side == Side::was ? "was" : "is"}});
  std::string grid = "M" + std::to_string(left) + " " + std::to_string(axis) + "h" + std::to_string(dayWidth);
  for (int x = left; x <= left + dayWidth; x += quarterWidth) {
    grid += "M" + std::to_string(x) + " " + std::to_string(top) + "V" + std::to_string(bottom);
  }
  group.add(path("r", grid));
  const int middle = (top + bottom) / 2 + 4;
  const int end = drawLabel(group, row, middle);
  drawHalf(group, row, false, axis);
  drawHalf(group, row, true, axis);
  picture.add(std::move(group));
  return std::max(bottom, end) + rowGap;
}

}  // namespace

Drawing draw(const Lane& lane) {
  Element picture("g");
  picture.add(words("h", 0, 14, fitted(lane.title, pictureWidth)));
  for (int hour = 0; hour <= hoursOfDay; hour += 6) {
    picture.add(words("s m", xOf(hour * minutesOfHour), titleHeight - 9, std::to_string(hour)));
  }
  int y = titleHeight;
  std::string text;
  for (const LaneDays& row : lane.rows) {
    y = drawRow(picture, row, y);
    text += (text.empty() ? "" : "; ") + textOf(row);
  }
  return {std::move(picture), y, lane.title, std::move(text)};
}

}  // namespace velk::cli
