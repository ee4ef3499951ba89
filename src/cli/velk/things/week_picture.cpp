#include <algorithm>

#include "cli/velk/things/week.h"
#include "cli/velk/things/words.h"

namespace velk::cli {
namespace {

// Pixels of a picture that a phone shows unscaled.
constexpr int width = 360;
constexpr int left = 34;
constexpr int top = 22;
constexpr int column = (width - left - 4) / weekdays;
constexpr int hourHeight = 20;
constexpr int calendarBottom = top + 24 * hourHeight;
constexpr int linkHeight = 24;

constexpr const char* style =
    "text{font:11px sans-serif;fill:#222}.r{fill:none;stroke:#ccc}.s{fill:#1565c0}.e{fill:#ef8e19}"
    ".l{fill:none;stroke:#1565c0;stroke-width:1.5}.h{font-weight:bold}";

std::string escapedXml(const std::string& text) {
  std::string safe;
  for (const char c : text) {
    if (c == '&') {
      safe += "&amp;";
    } else if (c == '<') {
      safe += "&lt;";
    } else if (c == '"') {
      safe += "&quot;";
    } else {
      safe += c;
    }
  }
  return safe;
}

/// An attribute: x="5".
std::string at(const char* name, int value) {
  return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
}

std::string text(int x, int y, const std::string& words, const char* more = "") {
  return "<text" + at("x", x) + at("y", y) + more + ">" + escapedXml(words) + "</text>\n";
}

std::string frame() {
  std::string svg;
  for (int hour = 0; hour <= 24; ++hour) {
    const int y = top + hour * hourHeight;
    svg += "<path class=\"r\" d=\"M" + std::to_string(left) + " " + std::to_string(y) + "h" +
           std::to_string(column * weekdays) + "\"/>\n";
    if (hour % 2 == 0) svg += text(0, y + 4, timeOfDay(hour, 0));
  }
  for (int day = 0; day < weekdays; ++day) {
    svg += text(left + day * column + 10, top - 8, weekday(day).substr(0, 3), " class=\"h\"");
  }
  return svg;
}

std::string titled(const Mark& mark) {
  return weekday(mark.day) + " " + timeOfDay(mark.minute / 60, mark.minute % 60) +
         (mark.event ? ", simulation: " : ", switch time: ") + mark.text;
}

std::string markOf(const Mark& mark) {
  const int x = left + mark.day * column + (mark.event ? column / 2 + 1 : 1);
  const int y = top + mark.minute * hourHeight / 60;
  return std::string("<rect class=\"") + (mark.event ? "e" : "s") + "\"" + at("x", x) + at("y", y) +
         at("width", column / 2 - 2) + at("height", 6) + at("rx", 2) + "><title>" + escapedXml(titled(mark)) +
         "</title></rect>\n";
}

/// The places in a column of names, in the order of their first use.
std::size_t placeIn(std::vector<std::string>& names, const std::string& name) {
  const auto found = std::find(names.begin(), names.end(), name);
  if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
  names.push_back(name);
  return names.size() - 1;
}

struct Graph {
  std::string svg;
  int height;
};

/// Sources on the left, destinations on the right, a curve for each link.
Graph graphOf(const std::vector<NamedLink>& links, int from) {
  constexpr int leftEnd = 70;
  constexpr int rightStart = 170;
  std::vector<std::string> sources;
  std::vector<std::string> destinations;
  const auto yOf = [&](std::size_t place) { return from + 30 + static_cast<int>(place) * linkHeight; };
  std::string svg = text(0, from, "Links", " class=\"h\"");
  for (const auto& [link, destination, json] : links) {
    const std::string y1 = std::to_string(yOf(placeIn(sources, titleOf(link))) - 4);
    const std::string y2 = std::to_string(yOf(placeIn(destinations, destination)) - 4);
    svg += "<path class=\"l\" d=\"M" + std::to_string(leftEnd) + " " + y1 + "C120 " + y1 + " 120 " + y2 +
           " " + std::to_string(rightStart) + " " + y2 + "\"><title>" +
           escapedXml(titleOf(link) + " to " + destination) + "</title></path>\n";
  }
  for (std::size_t i = 0; i < sources.size(); ++i) svg += text(0, yOf(i), "input " + sources[i]);
  for (std::size_t i = 0; i < destinations.size(); ++i) svg += text(rightStart + 6, yOf(i), destinations[i]);
  return {std::move(svg), yOf(std::max(sources.size(), destinations.size()))};
}

}  // namespace

std::string svgOf(const Week& week) {
  std::string body = frame();
  for (const Mark& mark : week.marks) body += markOf(mark);
  constexpr int legend = calendarBottom + 20;
  body += "<rect class=\"s\"" + at("x", left) + at("y", legend - 6) + at("width", 14) + at("height", 6) +
          "/>" + text(left + 20, legend, "switch time") + "<rect class=\"e\"" + at("x", left + 120) +
          at("y", legend - 6) + at("width", 14) + at("height", 6) + "/>" +
          text(left + 140, legend, "simulation");
  int height = legend + 12;
  if (!week.links.empty()) {
    Graph graph = graphOf(week.links, legend + 32);
    body += graph.svg;
    height = graph.height;
  }
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + std::to_string(width) + " " +
         std::to_string(height) + "\"><style>" + style +
         "</style>\n<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n" + body + "</svg>\n";
}

std::string htmlOf(const Week& week) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>The week</title>\n"
      "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">\n"
      "<style>body{font:16px sans-serif;margin:1em auto;max-width:40em;padding:0 .5em;color:#222}"
      "svg{width:100%;max-width:480px}table{border-collapse:collapse;width:100%}"
      "td{border-top:1px solid #ccc;padding:.3em;vertical-align:top}</style></head><body>\n<h1>The "
      "week</h1>\n";
  html += svgOf(week) + "<h2>What happens when</h2>\n<table>\n";
  for (const Mark& mark : week.marks) {
    html += "<tr><td>" + weekday(mark.day) + "</td><td>" + timeOfDay(mark.minute / 60, mark.minute % 60) +
            "</td><td>" + (mark.event ? "simulation" : "switch time") + "</td><td>" + escapedXml(mark.text) +
            "</td></tr>\n";
  }
  return html + "</table>\n</body></html>\n";
}

}  // namespace velk::cli
