#include "cli/velk/backup/identity.h"

#include <array>

#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/things/words.h"
#include "parameters/modes.h"

namespace velk::cli {
namespace {

Address nameLine(int output) {
  return {.area = Area::external, .page = static_cast<Byte>(output), .offset = 64};
}

std::string nameIn(const Lines& lines, int output) {
  const auto found = lines.find(nameLine(output));
  return found == lines.end() ? std::string() : label(found->second);
}

constexpr std::array firmware{Address{.page = 0, .offset = 2}, Address{.page = 0, .offset = 3},
                              Address{.page = 0, .offset = 7}, Address{.page = 0, .offset = 8},
                              Address{.page = 2, .offset = 8}, Address{.page = 2, .offset = 9},
                              Address{.page = 2, .offset = 10}};

Bytes firmwareIn(const Lines& lines) {
  Bytes words;
  for (const Address at : firmware) words += character(byteOf(lines, at));
  return words;
}

}  // namespace

std::span<const Address> firmwarePlaces() {
  return firmware;
}

Lines readIdentity(Serial& serial, const Lines& backup) {
  Lines lines;
  const auto read = [&](Address line) {
    lines.emplace(line, onlyConfiguration(line, readBytes(serial, line, lineSize)));
  };
  read({.page = 0, .offset = 0});
  read({.page = 2, .offset = 0});
  for (int output = 1; output <= parameters::lastOutput; ++output) {
    if (!nameIn(backup, output).empty()) read(nameLine(output));
  }
  return lines;
}

std::string strangenessOf(const Lines& backup, const Lines& here) {
  int named = 0;
  int same = 0;
  std::string example;
  for (int output = 1; output <= parameters::lastOutput; ++output) {
    const std::string there = nameIn(backup, output);
    const std::string name = nameIn(here, output);
    if (there.empty() || name.empty()) continue;
    ++named;
    if (there == name) ++same;
    if (there != name && example.empty()) {
      example = "output " + std::to_string(output) + " is \"" + there + "\" there and \"" + name + "\" here";
    }
  }
  if (named != 0) {
    if (same * 2 >= named) return {};
    return "of " + std::to_string(named) + " names " + std::to_string(same) + " are the same: " + example;
  }
  const Bytes there = firmwareIn(backup);
  const Bytes words = firmwareIn(here);
  const Bytes none(words.size(), '\0');
  if (there == words || there == none || words == none) return {};
  return "the firmware words are " + numbers(there) + " there and " + numbers(words) + " here";
}

}  // namespace velk::cli
