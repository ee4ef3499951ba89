#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/shared/json.h"
#include "cli/velk/things/details.h"
#include "component/serial.h"
#include "link/address.h"
#include "parameters/items.h"
#include "parameters/layouts.h"
#include "parameters/modes.h"

namespace velk::cli {

using parameters::lastOutput;

/// An output: mode and parameter items.
struct Output {
  Byte number = 0;
  std::string name;  ///< as people read it; often empty
  std::string mode;  ///< two letters; empty for an output without a mode
  Bytes items;       ///< one character an item
};

/// Reads mode and name, and the items if there is a mode.
Output readOutput(Serial& serial, Byte number);

/// Reads only mode and name.
Output readOutputHead(Serial& serial, Byte number);

/// Where the name of an output lies: 16 characters of its page that nothing else is known to use.
constexpr Byte outputNameSize = 16;
constexpr link::Address outputNameAt(Byte number) {
  return {.page = number, .offset = 64};
}

std::string outputName(Serial& serial, Byte number);

/// "output 5 Hall ceiling".
std::string titleOf(const Output& output);

/// What a mode does, in a word or two: "timer"; empty for some.
std::string_view meaningOfMode(std::string_view mode);

/// Where an item lies: "17", "18.low", "16:0", "B3".
std::string placeOf(const parameters::Item& item);

/// "item 1 (18.low)".
std::string titleOf(const parameters::Layout& layout, std::size_t item);

/// An item's value: a letter where it has letters, else a number.
std::string valueOf(const parameters::Item& item, char value);

/// What an item can hold: "0 to 15", "M or S".
std::string rangeOf(const parameters::Item& item);

/// The character for such a text; none when the item cannot hold it.
std::optional<char> parseItem(const parameters::Item& item, std::string_view text);

Json jsonOf(const Output& output);

/// The same without items.
Json jsonOfHead(const Output& output);

Details detailsOf(const Output& output);

}  // namespace velk::cli
