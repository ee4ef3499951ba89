#include "modules/model.h"

#include <algorithm>
#include <array>

#include "values/numbers.h"

namespace velk::modules {
namespace {

// Entry 36 breaks the rhythm of the list; it stands so in every host that compares with it.
constexpr std::string_view modelList =
    "MT001|MT002|MT003|MT004|MT005|MT006|MT007|MT008|MT009|MT010|MT011|MT012|MT013|MT014|MT015|MT016|MT017|"
    "MT018|"
    "MT019|MT020|MT021|MT022|MT023|MT024|MT025|MT026|MT027|MT028|MT029|MT030|MT031|MT032|MT033|MT034|MT035|  "
    "oude:|"
    "MT037";
static_assert(modelList.size() == 223);

/// Prefixes that share a type.
struct Family {
  SerialRange prefixes;
  std::int16_t type;
};

constexpr std::array families{
    Family{{12, 12}, 4}, Family{{13, 13}, 4}, Family{{14, 14}, 4}, Family{{16, 16}, 4},
    Family{{84, 87}, 7}, Family{{89, 89}, 7}, Family{{30, 39}, 7}, Family{{40, 49}, 7},
    Family{{50, 59}, 7}, Family{{60, 64}, 7}, Family{{69, 69}, 7}, Family{{6, 6}, 5},
};

/// Prefixes that are their own type.
constexpr std::array ownTypes{
    SerialRange{90, 1e300}, SerialRange{83, 83}, SerialRange{88, 88}, SerialRange{21, 21},
    SerialRange{26, 26},    SerialRange{27, 27}, SerialRange{29, 29}, SerialRange{10, 10},
    SerialRange{70, 79},    SerialRange{11, 11}, SerialRange{24, 24},
};

}  // namespace

std::int16_t ModuleType(std::string_view serieNr) {
  const double prefix = leadingNumber(serieNr.substr(0, 2));
  for (const Family& family : families) {
    if (family.prefixes.contains(prefix)) return family.type;
  }
  const bool isOwnType = std::any_of(ownTypes.begin(), ownTypes.end(),
                                     [&](const SerialRange& range) { return range.contains(prefix); });
  const auto rounded = roundTo<std::int16_t>(prefix);
  // The fold keeps the sign of the prefix.
  return isOwnType ? rounded : static_cast<std::int16_t>(rounded % 8);
}

bool inModelList(std::string_view name) {
  return modelList.find(name) != std::string_view::npos;
}

double serialValue(std::string_view serieNr) {
  return leadingNumber(serieNr);
}

}  // namespace velk::modules
