#include "modules/model.h"

#include <array>

#include "values/numbers.h"

namespace velk::modules {
namespace {

// Entry 36 breaks the rhythm of the list; it stands so in every host that compares with it.
constexpr std::string_view modelList =
    "MT001|MT002|MT003|MT004|MT005|MT006|MT007|MT008|MT009|MT010|MT011|MT012|"
    "MT013|MT014|MT015|MT016|MT017|MT018|MT019|MT020|MT021|MT022|MT023|MT024|"
    "MT025|MT026|MT027|MT028|MT029|MT030|MT031|MT032|MT033|MT034|MT035|  oude:|MT037";
static_assert(modelList.size() == 223);

std::int16_t own(int prefix) {
  return static_cast<std::int16_t>(prefix);
}

/// The fold keeps the sign of the prefix.
std::int16_t folded(int prefix) {
  return static_cast<std::int16_t>(prefix % 8);
}

template <std::int16_t type>
std::int16_t always(int /*prefix*/) {
  return type;
}

/// What prefixes make of themselves, from one on up to the next row's.
struct Family {
  double from;
  std::int16_t (*typeOf)(int prefix);
};

constexpr std::array families{
    Family{6, always<5>},  Family{7, folded},     Family{10, own},       Family{12, always<4>},
    Family{15, folded},    Family{16, always<4>}, Family{17, folded},    Family{21, own},
    Family{22, folded},    Family{24, own},       Family{25, folded},    Family{26, own},
    Family{28, folded},    Family{29, own},       Family{30, always<7>}, Family{65, folded},
    Family{69, always<7>}, Family{70, own},       Family{80, folded},    Family{83, own},
    Family{84, always<7>}, Family{88, own},       Family{89, always<7>}, Family{90, own},
};

}  // namespace

std::int16_t ModuleType(std::string_view serialNumber) {
  const double prefix = leadingNumber(serialNumber.substr(0, 2));
  auto* typeOf = folded;
  for (const Family& family : families) {
    if (prefix >= family.from) typeOf = family.typeOf;
  }
  return typeOf(roundTo<std::int16_t>(prefix));
}

bool inModelList(std::string_view name) {
  return modelList.find(name) != std::string_view::npos;
}

bool isOwnModule(std::string_view serialNumber) {
  return serialNumber == "000001";
}

}  // namespace velk::modules
