#include "cli/velk/things/output.h"

#include <algorithm>
#include <array>

#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"
#include "parameters/layouts.h"
#include "parameters/modes.h"
#include "values/digits.h"
#include "values/result.h"

namespace velk::cli {
namespace {

using parameters::Form;
using parameters::Item;

struct ModeWords {
  std::string_view code;
  std::string_view words;
};

constexpr std::array modeWords{
    ModeWords{"BI", "four groups"}, ModeWords{"PB", "push button"},    ModeWords{"DI", "dimmer"},
    ModeWords{"RO", "roller"},      ModeWords{"T1", "timer 1"},        ModeWords{"T2", "timer 2"},
    ModeWords{"T3", "timer 3"},     ModeWords{"T4", "timer 4"},        ModeWords{"T5", "timer 5"},
    ModeWords{"UD", "up and down"}, ModeWords{"LC", "light control"},  ModeWords{"RC", "remote control"},
    ModeWords{"RS", "signals"},     ModeWords{"TH", "thermostat"},     ModeWords{"ML", "multi-level"},
    ModeWords{"LO", "logic"},       ModeWords{"PS", "program switch"}, ModeWords{"IN", "four groups"},
    ModeWords{"SS", "push button"}, ModeWords{"AL", "alarm"},          ModeWords{"AU", "autonomous"},
};

bool hasLetters(const Item& item) {
  return item.form == Form::flag || item.form == Form::zero || item.form == Form::stored;
}

std::optional<char> letterOf(std::string_view text) {
  return text.size() == 1 ? std::optional(text.front()) : std::nullopt;
}

std::optional<char> characterOf(std::string_view number) {
  const auto value = wholeNumber<Byte>(number);
  return value ? std::optional(character(*value)) : std::nullopt;
}

std::string_view suffixOf(Form form) {
  return form == Form::low ? ".low" : form == Form::high ? ".high" : "";
}

Byte readByte(Serial& serial, link::Address at, const std::string& what) {
  return byteAt(readTransfer(serial, at, 1, what), 0);
}

/// As `ModeToStr`, which takes a roller for a dimmer when the reading of its marker is lost: here that is
/// asked again.
std::string readMode(Serial& serial, Byte number, const std::string& what) {
  const Byte mode = readByte(serial, {.page = number, .offset = parameters::modeOffset}, what);
  if (mode != parameters::rollerMode) return serial.ModeToStr(mode, number);
  const bool isRoller = readByte(serial, parameters::rollerMarker(number), what) == number;
  return std::string(parameters::codeOf(mode, isRoller));
}

}  // namespace

std::string outputName(Serial& serial, Byte number) {
  return label(readMemory(serial, outputNameAt(number), outputNameSize));
}

Output readOutputHead(Serial& serial, Byte number) {
  std::string mode = readMode(serial, number, "output " + std::to_string(number));
  return {.number = number, .name = outputName(serial, number), .mode = std::move(mode), .items = {}};
}

Output readOutput(Serial& serial, Byte number) {
  Output output = readOutputHead(serial, number);
  if (output.mode.empty()) return output;
  const auto read = [&] {
    std::string mode;
    const Byte result = serial.Ctl_Param("R", number, mode, output.items);
    // These are the items of another mode: what was lost is the marker.
    return result == 0 && mode != output.mode ? Byte{noReply} : result;
  };
  expectRead(read, "reading output " + std::to_string(number));
  return output;
}

std::string titleOf(const Output& output) {
  return named("output " + std::to_string(output.number), output.name);
}

std::string_view meaningOfMode(std::string_view mode) {
  const auto* const found = std::find_if(modeWords.begin(), modeWords.end(),
                                         [&](const ModeWords& row) { return row.code == mode; });
  return found == modeWords.end() ? std::string_view() : found->words;
}

std::string placeOf(const Item& item) {
  if (item.form == Form::stored) return "number";
  if (item.area == link::Area::block) return "B" + std::to_string(item.at);
  const std::string at = std::to_string(item.at);
  if (item.form != Form::flag) return at.substr().append(suffixOf(item.form));
  int bit = 0;
  while ((item.mask >> bit & 1) == 0) ++bit;
  return at + ":" + std::to_string(bit);
}

std::string valueOf(const Item& item, char value) {
  return hasLetters(item) ? std::string(1, value) : std::to_string(byteValue(value));
}

std::string rangeOf(const Item& item) {
  if (hasLetters(item)) {
    const std::string letter(1, item.set);
    return item.set == item.clear ? letter : letter + " or " + item.clear;
  }
  return item.form == Form::whole ? "0 to 255" : "0 to 15";
}

std::optional<char> parseItem(const Item& item, std::string_view text) {
  const std::optional<char> value = hasLetters(item) ? letterOf(text) : characterOf(text);
  return value && encoded(item, *value, 0) ? value : std::nullopt;
}

Json jsonOfHead(const Output& output) {
  return {{"output", output.number}, {"name", output.name}, {"mode", output.mode}};
}

Json jsonOf(const Output& output) {
  Json json = jsonOfHead(output);
  json["items"] = Json::array();
  const auto* const layout = parameters::layoutOf(output.mode);
  for (std::size_t i = 0; layout != nullptr && i < output.items.size(); ++i) {
    const Item& item = layout->items[i];
    const std::string text = valueOf(item, output.items[i]);
    const Json value = hasLetters(item) ? Json(text) : Json(byteValue(output.items[i]));
    json["items"].push_back({{"item", i}, {"place", placeOf(item)}, {"value", value}});
  }
  return json;
}

std::string titleOf(const parameters::Layout& layout, std::size_t item) {
  return "item " + std::to_string(item) + " (" + placeOf(layout.items[item]) + ")";
}

Details detailsOf(const Output& output) {
  Details details{{"name", output.name}, {"mode", output.mode}};
  const auto* const layout = parameters::layoutOf(output.mode);
  for (std::size_t i = 0; layout != nullptr && i < output.items.size(); ++i) {
    details.push_back({titleOf(*layout, i), valueOf(layout->items[i], output.items[i])});
  }
  return details;
}

}  // namespace velk::cli
