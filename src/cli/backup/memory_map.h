#pragma once

#include <array>
#include <compare>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "values/bytes.h"

/// Which bytes of the controller's memory are configuration, and what each belongs to.
namespace velk::cli {

/// The parts of the memory that configuration lies in.
enum class Area : Byte { external, block, highBlock };

/// A byte. In the external area the page is the high address byte, in the block areas the low one, so that
/// the bytes of a transfer always lie at successive offsets of one page.
struct Spot {
  Area area;
  Byte page;
  Byte offset;

  auto operator<=>(const Spot&) const = default;
};

/// The areas' names in backups, by their numbers.
constexpr std::array<std::string_view, 3> areaNames{"V", "H", "H+"};

/// A spot as backups name it: its area, its page and offset in hexadecimal digits, and both: "V 0510".
std::string_view areaOf(Spot spot);
std::string addressOf(Spot spot);
std::string keyOf(Spot spot);

/// How many bytes one transaction reads, from an offset that is a multiple of it.
constexpr int lineSize = 16;

enum class Kind : Byte {
  settings,
  output,
  links,
  displayText,
  preset,
  presetFlags,
  switchTime,
  events,
  infraredText,
};

/// Something that people configure: an output, a preset.
struct Thing {
  Kind kind;
  int number;  ///< links: the source; preset flags: the first preset; events: weekday * 24 + hour

  auto operator<=>(const Thing&) const = default;
};

/// What a byte belongs to; none for a byte that is no configuration.
std::optional<Thing> thingAt(Spot spot);

/// Whether the controller keeps a byte for itself: it is backed up, but neither compared nor restored.
bool isReadOnly(Spot spot);

/// Which kinds of things are asked for.
using Wanted = std::function<bool(Kind)>;

/// The first bytes of all lines that hold such things, but for the events, whose lists end by themselves.
std::vector<Spot> fixedLines(const Wanted& wanted);

/// The page of the list of events of a weekday (0 for Monday) and hour, in the high block area.
Byte eventPage(int day, int hour);

}  // namespace velk::cli
