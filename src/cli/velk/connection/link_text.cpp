#include "cli/velk/connection/link_text.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "cli/shared/escapes.h"
#include "cli/shared/password.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

[[noreturn]] void fail(const std::string& why) {
  throw std::invalid_argument("the link text " + why);
}

int number(std::string_view name, std::string_view digits, int lowest, int highest) {
  const auto value = wholeNumber<int>(digits);
  if (!value || *value < lowest || *value > highest) {
    fail("needs " + std::string(name) + "=" + std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return *value;
}

enum class Medium : Byte { tcp, serial, simulate, backup };

struct Scheme {
  std::string_view prefix;
  Medium medium;
};

constexpr std::array schemes{
    Scheme{"tcp://", Medium::tcp},
    Scheme{"serial:", Medium::serial},
    Scheme{"simulate:", Medium::simulate},
    Scheme{"backup:", Medium::backup},
};

struct Setting {
  std::string_view name;
  Medium medium;
  void (*apply)(LinkOptions&, std::string_view value);
};

void setAddress(LinkOptions& link, std::string_view value) {
  setBusAddress(link, std::string(value));
}

constexpr std::array settings{
    Setting{
        "password", Medium::tcp,
        [](LinkOptions& link, std::string_view value) { link.password = checkedPassword(unescaped(value)); }},
    Setting{"address", Medium::tcp, setAddress},
    Setting{"address", Medium::serial, setAddress},
    Setting{"fast", Medium::serial, [](LinkOptions& link, std::string_view) { link.fast = true; }},
    Setting{"baud", Medium::serial,
            [](LinkOptions& link, std::string_view value) {
              link.baud = static_cast<std::int16_t>(number("baud", value, lowestBaud, highestBaud));
            }},
};

void apply(LinkOptions& link, Medium medium, std::string_view setting) {
  const auto equals = setting.find('=');
  const std::string_view name = setting.substr(0, equals);
  const auto* const found = std::find_if(settings.begin(), settings.end(), [&](const Setting& row) {
    return row.medium == medium && row.name == name;
  });
  if (found == settings.end()) fail("has no \"" + std::string(name) + "\" in a link of this kind");
  found->apply(link, equals == std::string_view::npos ? std::string_view() : setting.substr(equals + 1));
}

void applyAll(LinkOptions& link, Medium medium, std::string_view list) {
  while (!list.empty()) {
    const auto end = std::min(list.find('&'), list.size());
    apply(link, medium, list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

void setTarget(LinkOptions& link, Medium medium, std::string_view target) {
  if (target.empty() != (medium == Medium::simulate)) fail("misses its target, or has one too many");
  link.simulate = medium == Medium::simulate;
  if (medium == Medium::tcp) link.tcp = target;
  if (medium == Medium::serial) link.serial = target;
  if (medium == Medium::backup) link.backup = target;
}

}  // namespace

void setBusAddress(LinkOptions& link, const std::string& digits) {
  link.busAddress =
      static_cast<Byte>(number("address", digits, link::lowestBusAddress, link::highestBusAddress));
}

LinkOptions parseLink(const std::string& text) {
  const auto* const scheme = std::find_if(schemes.begin(), schemes.end(), [&](const Scheme& row) {
    return text.compare(0, row.prefix.size(), row.prefix) == 0;
  });
  if (scheme == schemes.end())
    fail("starts with tcp://, serial:, simulate: or backup:, unlike \"" + text + "\"");
  const std::string_view rest = std::string_view(text).substr(scheme->prefix.size());
  // Nothing is to be set in a file, whose name may have a "?".
  const bool isFile = scheme->medium == Medium::backup;
  const auto question = isFile ? rest.size() : std::min(rest.find('?'), rest.size());
  LinkOptions link;
  setTarget(link, scheme->medium, rest.substr(0, question));
  applyAll(link, scheme->medium, rest.substr(std::min(question + 1, rest.size())));
  return link;
}

std::string nameOf(const LinkOptions& link) {
  if (link.simulate) return "simulate:";
  if (!link.backup.empty()) return "backup:" + link.backup;
  if (link.tcp.empty() && link.serial.empty()) return "none";
  const std::string address = "address=" + std::to_string(link.busAddress);
  if (!link.tcp.empty()) return "tcp://" + link.tcp + "?" + address;
  return "serial:" + link.serial + (link.fast ? "?fast&baud=" : "?baud=") + std::to_string(link.baud) + "&" +
         address;
}

}  // namespace velk::cli
