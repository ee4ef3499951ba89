#include "cli/velk/things/switch_entry.h"

#include <algorithm>
#include <stdexcept>

#include "memory/map.h"

namespace velk::cli {
namespace {

constexpr Byte firstEntryOutput = 3;
constexpr Byte firstAction = 101;
constexpr Byte lastAction = 124;
constexpr Byte lastOfAction = 4;
constexpr std::size_t sizeOfEntry = 3;

[[noreturn]] void refuse(const std::string& sentence) {
  throw std::invalid_argument(sentence);
}

/// "101.2".
TypedEntry parseAction(const std::string& typed, std::size_t point) {
  const std::string_view text = typed;
  // "7.45" is meant as a time.
  return {.output = "",
          .bytes = {character(numberIn(typed, text.substr(0, point),
                                       "a time is written 07:45, and the first number of an action",
                                       firstAction, lastAction)),
                    character(numberIn(typed, text.substr(point + 1), "the second number of an action", 1,
                                       lastOfAction))}};
}

bool isDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// A page has room for a header of three bytes, the entries and a zero; the last one holds the clock too.
std::size_t roomFor(Byte block) {
  constexpr std::size_t headerAndEnd = 4;
  link::Address at{.page = static_cast<Byte>(128 + block), .offset = 200};
  std::size_t bytes = 0;
  for (; at.offset != 0; ++at.offset, ++bytes) {
    const auto thing = memory::thingAt(at);
    if (!thing || thing->kind != memory::ThingKind::switchTime) break;
  }
  return (bytes - headerAndEnd) / sizeOfEntry;
}

[[noreturn]] void refuseEntry(const std::string& typed) {
  if (const auto equals = typed.rfind('='); equals != std::string::npos) {
    refuse("\"" + typed + "\": behind an output stand two numbers, 0 to 255, as in \"" +
           typed.substr(0, equals) + "=255:2\"; a switch time that does the same tells them");
  }
  // "25:00", "7:45pm", "0645": not "3:1", in which a number is missing.
  const auto colon = std::min(typed.find(':'), typed.size());
  const bool isTime = colon == typed.size() || (colon == typed.rfind(':') && colon + 2 < typed.size());
  if (isTime && isDigits(typed.substr(0, colon))) {
    refuse("\"" + typed + "\": a time is 00:00 to 23:59");
  }
  refuse(
      "\"" + typed +
      "\" is no time and no days, nor what to switch: an output with two numbers, as in \"Kitchen=255:2\", "
      "or an action, as in 101.2");
}

}  // namespace

TypedEntry parseSwitchEntry(const std::string& typed) {
  const std::string_view text = typed;
  const auto point = text.find('.');
  if (point != std::string_view::npos && isDigits(text.substr(0, point)) &&
      isDigits(text.substr(point + 1))) {
    return parseAction(typed, point);
  }
  const auto entry = parseEntry(typed, 2);
  if (!entry) refuseEntry(typed);
  return *entry;
}

Bytes dataOf(const std::vector<TypedEntry>& entries, OutputNames& names) {
  Bytes data;
  for (const TypedEntry& entry : entries) {
    if (!entry.output.empty()) data += character(names.find(entry.output));
    data += entry.bytes;
  }
  return data;
}

void checkData(Byte block, std::string_view data) {
  const std::string here = "switch time " + std::to_string(block);
  if (data.empty()) refuse(here + " needs something to switch");
  if (byteAt(data, 0) >= firstAction && data.size() == 2) return;
  if (data.size() % sizeOfEntry != 0) {
    refuse(here + ": an action stands alone, without outputs and other actions");
  }
  if (data.size() / sizeOfEntry > roomFor(block)) {
    refuse(here + " has room for " + std::to_string(roomFor(block)) + " outputs");
  }
  for (std::size_t i = 0; i < data.size(); i += sizeOfEntry) {
    const Byte output = byteAt(data, i);
    if (output >= firstEntryOutput && output <= lastOutput) continue;
    refuse(here + " can switch the outputs " + std::to_string(firstEntryOutput) + " to " +
           std::to_string(lastOutput) + ", but not output " + std::to_string(output));
  }
}

}  // namespace velk::cli
