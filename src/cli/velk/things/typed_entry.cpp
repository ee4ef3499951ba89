#include "cli/velk/things/typed_entry.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "values/digits.h"

namespace velk::cli {
namespace {

/// Where the output ends, whose name may hold both signs: at the last "=" before the colons between the
/// numbers. 0 when there is none, or no output. (With a colon there, 07:15:30 would be an output, too.)
std::size_t endOfOutput(std::string_view text, std::size_t count) {
  std::size_t numbers = text.size();
  for (std::size_t i = 1; i < count; ++i) {
    if (numbers == 0) return 0;
    numbers = text.rfind(':', numbers - 1);
    if (numbers == std::string_view::npos) return 0;
  }
  if (numbers == 0) return 0;
  const auto end = text.rfind('=', numbers - 1);
  return end == std::string_view::npos ? 0 : end;
}

}  // namespace

std::string spelled(std::size_t count) {
  static constexpr std::array words{"no", "one", "two", "three", "four"};
  return words.at(count);
}

Byte numberIn(const std::string& typed, std::string_view text, const std::string& what, int first, int last) {
  const auto number = wholeNumber<int>(text);
  if (!number || *number < first || *number > last) {
    throw std::invalid_argument("\"" + typed + "\": " + what + " is " + std::to_string(first) + " to " +
                                std::to_string(last));
  }
  return static_cast<Byte>(*number);
}

std::optional<TypedEntry> parseEntry(const std::string& typed, std::size_t count) {
  const auto end = endOfOutput(typed, count);
  if (end == 0) return std::nullopt;
  const std::string what = "each of the " + spelled(count) + " numbers behind an output";
  TypedEntry entry{.output = typed.substr(0, end), .bytes = {}};
  std::string_view rest = slice(typed, end + 1);
  for (std::size_t i = 0; i < count; ++i) {
    // The last one ends with the text: a colon in it is no digit.
    const auto colon = i + 1 < count ? rest.find(':') : rest.size();
    entry.bytes += character(numberIn(typed, rest.substr(0, colon), what, 0, 255));
    rest.remove_prefix(std::min(colon + 1, rest.size()));
  }
  return entry;
}

}  // namespace velk::cli
