#include "cli/velk/connection/houses.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <stdexcept>

#include "cli/shared/command_line.h"
#include "cli/shared/escapes.h"
#include "cli/shared/file_names.h"
#include "cli/shared/files.h"
#include "cli/shared/password.h"
#include "cli/velk/connection/link_text.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

void warnOfReaders(const fs::path& file) {
  if (!othersMayRead(file)) return;
  const std::string name = textOf(file);
  std::cerr << "velk: " << name << " holds a password and others may read it: chmod 600 " << name << '\n';
}

std::string passwordIn(const std::string& name) {
  const fs::path file = name.starts_with("~/") ? homeFolder() / pathOf(name.substr(2))
                                               : configurationFile().parent_path() / pathOf(name);
  const std::string text = readFile(textOf(file));
  warnOfReaders(file);
  return text.substr(0, text.find_first_of("\r\n"));
}

struct Key {
  std::string_view name;
  void (*apply)(LinkOptions&, const std::string& value);
};

/// In the order in which they are applied: a link replaces all that it says.
constexpr std::array keys{
    Key{"link", [](LinkOptions& link, const std::string& value) { link = parseLink(value); }},
    Key{"address", setBusAddress},
    Key{"password-file",
        [](LinkOptions& link, const std::string& value) {
          link.password = checkedPassword(unescaped(passwordIn(value)));
        }},
    Key{"password", [](LinkOptions& link,
                       const std::string& value) { link.password = checkedPassword(unescaped(value)); }},
};

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += " " + name;
  return text;
}

std::vector<ConfigSetting> configuration() {
  const std::string file = textOf(configurationFile());
  return parseConfiguration(readFileIfThere(file).value_or(""), file);
}

std::vector<std::string> namesIn(const std::vector<ConfigSetting>& settings) {
  std::vector<std::string> names;
  for (const ConfigSetting& setting : settings) {
    if (std::find(names.begin(), names.end(), setting.section) == names.end())
      names.push_back(setting.section);
  }
  return names;
}

[[noreturn]] void failForWantOf(const std::string& house, const std::vector<ConfigSetting>& settings) {
  const auto names = namesIn(settings);
  throw std::invalid_argument("there is no house \"" + house + "\" in " + textOf(configurationFile()) +
                              (names.empty() ? std::string(", which names none") : ", but" + listed(names)));
}

void checkKeys(const std::string& house, const std::vector<ConfigSetting>& own) {
  for (const ConfigSetting& setting : own) {
    const bool isKnown =
        std::any_of(keys.begin(), keys.end(), [&](const Key& key) { return key.name == setting.name; });
    if (!isKnown) {
      throw std::invalid_argument("the house \"" + house + "\" has no \"" + setting.name +
                                  "\", but link, address, password and password-file");
    }
  }
}

}  // namespace

std::vector<std::string> houseNames() {
  return namesIn(configuration());
}

LinkOptions houseNamed(const std::string& name) {
  const auto all = configuration();
  std::vector<ConfigSetting> own;
  std::copy_if(all.begin(), all.end(), std::back_inserter(own),
               [&](const ConfigSetting& setting) { return setting.section == name; });
  if (own.empty()) failForWantOf(name, all);
  checkKeys(name, own);
  LinkOptions link;
  bool holdsPassword = false;
  for (const Key& key : keys) {
    for (const ConfigSetting& setting : own) {
      if (setting.name != key.name) continue;
      key.apply(link, setting.value);
      holdsPassword = holdsPassword || (key.name != "password-file" && !link.password.empty());
    }
  }
  if (link.tcp.empty() && link.serial.empty() && link.backup.empty() && !link.simulate) {
    throw std::invalid_argument("the house \"" + name + "\" has no link");
  }
  if (holdsPassword) warnOfReaders(configurationFile());
  return link;
}

}  // namespace velk::cli
