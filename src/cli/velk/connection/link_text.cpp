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

enum class Kind : Byte { tcp, serial, simulate };

struct Scheme {
  std::string_view prefix;
  Kind kind;
};

constexpr std::array schemes{
    Scheme{"tcp://", Kind::tcp},
    Scheme{"serial:", Kind::serial},
    Scheme{"simulate:", Kind::simulate},
};

struct Setting {
  std::string_view name;
  Kind kind;
  void (*apply)(LinkOptions&, std::string_view value);
};

void setAddress(LinkOptions& link, std::string_view value) {
  link.busAddress =
      static_cast<Byte>(number("address", value, link::lowestBusAddress, link::highestBusAddress));
}

constexpr std::array settings{
    Setting{
        "password", Kind::tcp,
        [](LinkOptions& link, std::string_view value) { link.password = checkedPassword(unescaped(value)); }},
    Setting{"address", Kind::tcp, setAddress},
    Setting{"address", Kind::serial, setAddress},
    Setting{"fast", Kind::serial, [](LinkOptions& link, std::string_view) { link.fast = true; }},
    Setting{"baud", Kind::serial,
            [](LinkOptions& link, std::string_view value) {
              link.baud = static_cast<std::int16_t>(number("baud", value, lowestBaud, highestBaud));
            }},
};

void apply(LinkOptions& link, Kind kind, std::string_view setting) {
  const auto equals = setting.find('=');
  const std::string_view name = setting.substr(0, equals);
  const auto* const found = std::find_if(settings.begin(), settings.end(), [&](const Setting& row) {
    return row.kind == kind && row.name == name;
  });
  if (found == settings.end()) fail("has no \"" + std::string(name) + "\" in a link of this kind");
  found->apply(link, equals == std::string_view::npos ? std::string_view() : setting.substr(equals + 1));
}

void applyAll(LinkOptions& link, Kind kind, std::string_view list) {
  while (!list.empty()) {
    const auto end = std::min(list.find('&'), list.size());
    apply(link, kind, list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

void setTarget(LinkOptions& link, Kind kind, std::string_view target) {
  if (target.empty() != (kind == Kind::simulate)) fail("misses its target, or has one too many");
  link.simulate = kind == Kind::simulate;
  if (kind == Kind::tcp) link.tcp = target;
  if (kind == Kind::serial) link.serial = target;
}

}  // namespace

LinkOptions parseLink(const std::string& text) {
  const auto* const scheme = std::find_if(schemes.begin(), schemes.end(), [&](const Scheme& row) {
    return text.compare(0, row.prefix.size(), row.prefix) == 0;
  });
  if (scheme == schemes.end()) fail("starts with tcp://, serial: or simulate:, unlike \"" + text + "\"");
  const std::string_view rest = std::string_view(text).substr(scheme->prefix.size());
  const auto question = std::min(rest.find('?'), rest.size());
  LinkOptions link;
  setTarget(link, scheme->kind, rest.substr(0, question));
  applyAll(link, scheme->kind, rest.substr(std::min(question + 1, rest.size())));
  return link;
}

std::string nameOf(const LinkOptions& link) {
  if (link.simulate) return "simulate:";
  const std::string address = "address=" + std::to_string(link.busAddress);
  if (!link.tcp.empty()) return "tcp://" + link.tcp + "?" + address;
  return "serial:" + link.serial + (link.fast ? "?fast&baud=" : "?baud=") + std::to_string(link.baud) + "&" +
         address;
}

}  // namespace velk::cli
