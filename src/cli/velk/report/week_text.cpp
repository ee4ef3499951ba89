#include "cli/velk/report/week_text.h"

#include <algorithm>
#include <array>

#include "cli/shared/wrap.h"
#include "cli/velk/things/words.h"

namespace velk::cli {
namespace {

constexpr int narrowest = 40;
constexpr int widest = 200;

/// How a day is laid out.
struct Layout {
  std::size_t label;  ///< characters in front of it
  int columns;        ///< each a round number of minutes
};

/// The most columns that fit beside the days' names, which narrow terminals have only letters for.
Layout layoutFor(int width) {
  constexpr int wide = 80;
  constexpr std::size_t names = 19;  // "Mon, Tue, Thu, Sat "
  constexpr std::size_t letters = 10;
  constexpr std::array choices{144, 96, 72, 48, 24};
  constexpr int bars = 2;
  const std::size_t label = width < wide ? letters : names;
  const int room = std::clamp(width, narrowest, widest) - static_cast<int>(label) - bars;
  return {label, *std::find_if(choices.begin(), choices.end(), [&](int columns) { return columns <= room; })};
}

/// "Mon-Fri", and a letter a day where the names take more than the label.
std::string labelOf(Byte days, std::size_t size) {
  std::string label = daysOf(days);
  if (label.size() >= size) {
    label.clear();
    for (int day = 0; day < weekdays; ++day) label += (days >> day & 1) != 0 ? weekday(day).front() : '-';
  }
  label.resize(size, ' ');
  return label;
}

/// An hour stands where its column is, as often as six columns between them allow.
std::string hoursLine(const Layout& layout) {
  constexpr std::array steps{1, 2, 3, 6};
  constexpr int room = 6;
  constexpr int written = 5;
  const int perHour = layout.columns / hoursOfDay;
  const int step =
      *std::find_if(steps.begin(), steps.end(), [&](int hours) { return hours * perHour >= room; });
  std::string line(layout.label + 1, ' ');
  for (int hour = 0; hour < hoursOfDay; hour += step) {
    line += timeOfDay(hour, 0) + std::string(static_cast<std::size_t>(step * perHour - written), ' ');
  }
  return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

struct Sign {
  std::string_view plain;
  std::string_view coloured;
};

// By what is in a column: nothing, switch times, events, both.
constexpr std::array signs{
    Sign{" ", " "},
    Sign{"#", "\x1b[94m\u2580\x1b[0m"},
    Sign{".", "\x1b[33m\u2584\x1b[0m"},
    Sign{"*", "\x1b[94;43m\u2580\x1b[0m"},
};

std::string_view textOf(const Sign& sign, bool halfBlocks) {
  return halfBlocks ? sign.coloured : sign.plain;
}

std::string lineOf(const LaneDays& row, const Layout& layout, bool halfBlocks) {
  std::vector<std::size_t> cells(static_cast<std::size_t>(layout.columns));
  for (const Spot& spot : row.spots) {
    const int column = std::min(spot.minute, minutesOfDay - 1) * layout.columns / minutesOfDay;
    cells.at(static_cast<std::size_t>(column)) |= spot.event ? 2U : 1U;
  }
  std::string line = labelOf(row.days, layout.label) + "|";
  for (const std::size_t cell : cells) line += textOf(signs.at(cell), halfBlocks);
  return line + "|\n";
}

}  // namespace

std::string textOf(const std::vector<Lane>& lanes, int width, bool halfBlocks) {
  const Layout layout = layoutFor(width);
  std::string text = hoursLine(layout);
  for (const Lane& lane : lanes) {
    text += lane.title + "\n";
    for (const LaneDays& row : lane.rows) text += lineOf(row, layout, halfBlocks);
  }
  const std::string indentation(layout.label + 1, ' ');
  text += indentation;
  text.append(textOf(signs[1], halfBlocks)).append(" switch time  ");
  text.append(textOf(signs[2], halfBlocks)).append(" simulation");
  if (!halfBlocks) text.append("\n").append(indentation).append(signs[3].plain).append(" both");
  return text + "\n";
}

std::string textOf(const std::vector<Mark>& marks, int width, bool halfBlocks) {
  constexpr std::size_t indent = 4;
  const auto longest = static_cast<std::size_t>(std::clamp(width, narrowest, widest));
  std::string text;
  for (const Mark& mark : marks) {
    const std::string time = timeOf(mark.days, mark.minute) + " ";
    const std::size_t before = time.size() + 2;  // with the sign, one column wide, and a blank
    const bool fits = before + mark.text.size() <= longest;
    text.append(time).append(textOf(signs[mark.event ? 2 : 1], halfBlocks)).append(" ");
    text += (fits ? mark.text : filled(mark.text, longest, indent, before)) + "\n";
  }
  return text;
}

}  // namespace velk::cli
