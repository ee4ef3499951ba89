#include "cli/velk/things/output_names.h"

#include <algorithm>
#include <stdexcept>

#include "cli/shared/escapes.h"
#include "cli/shared/progress.h"
#include "cli/velk/things/words.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

/// Capitals of ASCII and Latin-1 as small letters, of which they are 32 away; 0xD7 among them is no letter.
Bytes smallLetters(Bytes text) {
  for (char& c : text) {
    const Byte byte = byteValue(c);
    const bool isCapital = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
    if (isCapital) c = character(byte + 32);
  }
  return text;
}

/// Names are shown with escapes, and typed like that.
Bytes comparable(const std::string& shownOrTyped) {
  return smallLetters(unescaped(shownOrTyped));
}

}  // namespace

std::optional<Byte> outputNumberOf(std::string_view typed) {
  if (typed.empty() || typed.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const auto number = wholeNumber<Byte>(typed);
  if (!number || *number < 1 || *number > lastOutput) {
    throw std::invalid_argument("there is no output " + std::string(typed) + ", but 1 to " +
                                std::to_string(lastOutput));
  }
  return number;
}

const std::string& OutputNames::of(Byte number) {
  static const std::string none;
  if (number < 1 || number > lastOutput) return none;
  auto& name = names_.at(number);
  if (!name) name = outputName(serial_, number);
  return *name;
}

std::string OutputNames::titleOf(Byte number) {
  return named("output " + std::to_string(number), of(number));
}

Byte OutputNames::find(const std::string& typed) {
  if (const auto number = outputNumberOf(typed)) return *number;
  const Bytes wanted = comparable(typed);
  std::vector<Byte> whole;
  std::vector<Byte> beginnings;
  for (const int each : counted("names", 1, wanted.empty() ? 0 : lastOutput)) {
    const auto number = static_cast<Byte>(each);
    const Bytes name = comparable(of(number));
    if (name == wanted) whole.push_back(number);
    if (name.starts_with(wanted)) beginnings.push_back(number);
  }
  const std::vector<Byte>& fitting = whole.empty() ? beginnings : whole;
  if (fitting.size() == 1) return fitting.front();
  if (fitting.empty()) throw std::invalid_argument("no output has the name \"" + typed + "\"");
  throw std::invalid_argument("\"" + typed + "\" fits " + listOf(fitting));
}

std::string OutputNames::listOf(const std::vector<Byte>& outputs) {
  std::string text;
  for (const Byte number : outputs) text += (text.empty() ? "" : ", ") + titleOf(number);
  return text;
}

}  // namespace velk::cli
