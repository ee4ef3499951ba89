#pragma once

#include <compare>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "link/address.h"

/// What lies where in the controller: one table behind the simulator's trace, the tools' backups and
/// docs/memory-map.md.
namespace velk::memory {

enum class ThingKind : Byte {
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
  ThingKind kind;
  int number;  ///< links: the source; preset flags: the first preset; events: weekday * 24 + hour

  auto operator<=>(const Thing&) const = default;
};

/// A number of a region's name, from the page and the offset.
using NumberRule = int (*)(int page, int offset);

/// Whether a page of a region belongs to it.
using PageRule = bool (*)(int page);

/// The same run of offsets in each page of a run of pages.
struct Region {
  link::Area area;
  Byte firstPage, lastPage;
  Byte firstOffset, lastOffset;
  std::string_view name;  ///< each "%" stands for the next number; empty for bytes without a known meaning
  std::optional<ThingKind> kind;  ///< what it configures
  NumberRule first = nullptr;     ///< also the number of the thing
  NumberRule second = nullptr;
  bool readOnly = false;     ///< configuration that the controller keeps for itself
  PageRule pages = nullptr;  ///< only some of the pages
};

/// All regions. The first that holds a byte decides.
std::span<const Region> regions();

/// The region that holds a byte; none when nothing is known of it.
const Region* regionAt(link::Address at);

/// What lies at a byte: "output 5, mode", "preset 3, text"; empty when nothing is known of it.
std::string nameOf(link::Address at);

/// What a byte belongs to; none for a byte that is no configuration.
std::optional<Thing> thingAt(link::Address at);

/// Whether the controller keeps a byte for itself: it is backed up, but neither compared nor restored.
bool isReadOnly(link::Address at);

}  // namespace velk::memory
