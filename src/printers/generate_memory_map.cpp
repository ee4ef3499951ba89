// Prints docs/memory-map.md: the table of regions, and how to find one thing in it.

#include <iostream>

#include "memory/map.h"

namespace {

using velk::Byte;

constexpr std::string_view introduction =
    R"(<!-- Printed from the table of regions; see CONTRIBUTING.md. -->
# The controller's memory

Every request names 16 address bits as two bytes: the page (`DPHxram`, high) and the offset (`DPLxram`, low), and up
to 16 bytes. There are three memories. `velk-sim --trace` names the place that each request reaches.

| memory | chosen by | what is in it |
|---|---|---|
| external | direction "V" | settings, clock, outputs, links, texts, switch times |
| block area | any other direction, usually "H" | records of presets, blocks of outputs |
| high bank of the block area | the same with `AtlBytes` 128 + count (144: 16 bytes) | long records, infrared texts, simulation |

In both banks of the block area the roles of the address bytes are swapped: the low byte names the page, the high
byte the place in it, and the bytes of one transfer lie at successive places.

## What lies where

Pages and offsets are decimal. In the external memory the page is the high address byte, in the block areas the low
one. The first row that holds a byte decides. Backups hold what is configuration; what is read only is neither
compared nor restored.

| memory | pages | offsets | what | configuration |
|---|---|---|---|---|
)";

constexpr std::string_view closing = R"(
## Where one thing lies

### External memory

Numbers in the column "address" are hexadecimal when they start with 0x, page and offset otherwise.

| address | bytes | what | method |
|---|---|---|---|
| 0x0000 | 1 | mailbox of the modules: trigger | `Module` and others |
| 0x0002 | 1 | the controller's kind, for some values of 0x0007 and 0x0008 | `Ctl_Init` |
| 0x0004 to 0x0006 | 3 | settings: 10 to 99, 104 to 128, any | `Ctl_Init` |
| 0x0007, 0x0008 | 2 | controller bytes, read only | `Ctl_Init` |
| 0x000A | 16 | mailbox: request header, then the reply code | `Module` and others |
| 0x0010 | 16 | mailbox: data of a piece | `Module` and others |
| 0x0208 to 0x020A | 3 | further controller bytes, read only | `Ctl_Init` |
| 0x10FF - A | 1 | A itself where output A of mode number 4 is "RO", else "DI" | `ModeToStr`, `Ctl_Param` |
| page A, 1 | 1 | mode of output A (1 to 99) | `Ctl_Param` |
| page A, 4 to 30 | | parameters of the output: [outputs.md](outputs.md) | `Ctl_Param` |
| page S, 31 + 2 k | 2 | link of source S (0 to 124, but for 1, 2, 100), sub-address k (0 to 3) | `Ctl_Soft` |
| page S, 254 | 1 | edges of these links: bit k + 4 rising, bit k falling | `Ctl_Soft` |
| page 6 to 34, 40 | 16 each | display texts of the chosen language | `Ctl_Lang` |
| page N + 34, 40 | 16 | text of preset N (1 to 92) | `Preset` |
| page A, 56 | 1 | high four bits: the last parameter item of most modes | `Ctl_Param` |
| page A, 64 | 16 | name of output A, a place that this project chose | `velk output A name` |
| page 102 + (N - 1) / 4, 8 + 2 ((N - 1) mod 4) | 2 | delays of preset N; the second 255 for none | `Preset` |
| page 102 + (N - 1) / 4, 18 | 1 | bit (N - 1) mod 4: preset N takes part in the simulation | `Preset` |
| page 128 + B, 200 | to the end of the page | switch-time block B (0 to 127) | `SwitchTime` |
| 0xFFF7, 0xFFF8 | 2 | hold the clock while it is set: 255, then 0 | `Ctl_Init` |
| 0xFFF9 to 0xFFFF | 7 | clock in BCD: seconds, minutes, hours, weekday, day, month, year | `Ctl_Init` |

The place of the names is this project's own choice, which no method of the component knows: a controller may keep
something else there, and `velk output A name` shows what it replaces. The display texts at offset 40 are another
thing.

#### A link

| byte 1 | byte 2 | meaning |
|---|---|---|
| 0 | 0 | none |
| 129 to 255 | two nibbles: `Parameters1` high, `Parameters2` low | output byte 1 - 128; or the group of this number |
| 1 to 127 | low nibble of `Parameters2` from address 101 on | input |

A group (129 to 255) is written with `Parameters1` + 128, or + 192 when `Parameters2` is not 0. Both kinds look alike
in memory, so that a group reads back as an output.

#### A switch-time block

| offset | what |
|---|---|
| 200 | bits 0 to 6: days; bit 7: one action of two bytes follows instead of a list |
| 201, 202 | minute and hour in BCD |
| 203 on | action (101 to 124, then 1 to 4) and two zero bytes; or entries of three bytes whose first is 3 or more, and a zero byte |

Four zero bytes are an empty block.

### Block area

| place (high byte) | page (low byte) | bytes | what |
|---|---|---|---|
| 4 N + 12 | record + 55 | 4 | records 3 to 99 of preset N, 1 to 28 |
| 4 (N - 29) + 128 | record | 4 | the same of the presets 29 to 60 |
| 4 (N - 61) + 128 | record + 99 | 4 | the same of the presets 61 to 92 |
| (A mod 16) * 16 | 247 + A / 16 | 16 | block of output A: [outputs.md](outputs.md) |

`DPHPreset` and `DPLPreset` give the first two columns.

### High bank

| page (low byte) | places (high byte) | what | method |
|---|---|---|---|
| 10 + K / 16 | (K mod 16) * 16 | infrared text K (0 to 63), 16 bytes; write only | `Ctl_IRText` |
| 26 | 0, 16, ... 112 | buffer of long records: samples, GSM texts, records of some modules | `Sample`, `GSMtext`, `Module` |
| 36 W + hour in BCD | 0, 16, ... 240 | simulation of weekday W (0 to 6) and hour: records of five bytes, closed by 255 | `Simulation` |

The mailbox and the long records are described in [modules.md](modules.md).
)";

std::string rangeOf(Byte first, Byte last) {
  const std::string text = std::to_string(first);
  return first == last ? text : text + " to " + std::to_string(last);
}

/// A region's name with a letter for each number.
std::string describe(const velk::memory::Region& region) {
  std::string text;
  char letter = 'N';
  for (const char c : region.name) {
    text += c == '%' ? letter : c;
    if (c == '%') letter = 'K';
  }
  return text.empty() ? "output N, nothing known" : text;
}

std::string_view useOf(const velk::memory::Region& region) {
  if (!region.kind) return "no";
  return region.readOnly ? "read only" : "yes";
}

}  // namespace

int main() {
  std::cout << introduction;
  for (const auto& region : velk::memory::regions()) {
    std::cout << "| " << nameOf(region.area) << " | " << rangeOf(region.firstPage, region.lastPage) << " | "
              << rangeOf(region.firstOffset, region.lastOffset) << " | " << describe(region) << " | "
              << useOf(region) << " |\n";
  }
  std::cout << closing;
}
