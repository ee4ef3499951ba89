#include "modules/conversion.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "values/numbers.h"
#include "values/runtime_error.h"

namespace velk::modules {
namespace {

using Positions = std::vector<Byte>;

constexpr SerialRange twentySevens{270000, 279999};

// Modules whose fields stay as they are, in front of the rule for 27 and behind it.
constexpr std::array neverReceived{SerialRange{50000, 69999}};
constexpr std::array notReceived{SerialRange{80000, 89999}, SerialRange{910000, 919999},
                                 SerialRange{980100, 1e300}};
constexpr std::array neverSent{SerialRange{50000, 69999}, SerialRange{110000, 119999},
                               SerialRange{240000, 249999}};
constexpr std::array notSent{SerialRange{80000, 89999}, SerialRange{910000, 919999},
                             SerialRange{930000, 939999}, SerialRange{970000, 979999},
                             SerialRange{980100, 1e300}};
static_assert(std::ranges::is_sorted(notReceived) && std::ranges::is_sorted(neverSent) &&
              std::ranges::is_sorted(notSent));

std::size_t indexOf(std::string_view data, Byte position) {
  if (position == 0 || position > data.size()) throw RuntimeError(RuntimeError::invalidArgument);
  return position - std::size_t{1};
}

template <class Ranges>
bool anyContains(const Ranges& ranges, double serial) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const SerialRange& range) { return range.contains(serial); });
}

/// A group of four fields, two bytes each.
void addGroup(Positions& fields, Byte first) {
  for (int i = 0; i < 4; ++i) fields.push_back(static_cast<Byte>(first + 2 * i));
}

/// The fields of a known model: the first group, and a further one by type.
Positions knownModelFields(std::int16_t type, double serial) {
  Positions fields;
  addGroup(fields, 2);
  if (type == 7 && longSevens.contains(serial)) addGroup(fields, 10);
  if (type == 96 || (type == 95 && serial >= 951000)) addGroup(fields, 26);
  return fields;
}

}  // namespace

Positions positionsReceived(std::string_view serialNumber, bool knownModel) {
  const double serial = serialValue(serialNumber);
  const std::int16_t type = ModuleType(serialNumber);
  if (anyContains(neverReceived, serial)) return {};
  if (twentySevens.contains(serial)) return {2};
  if (anyContains(notReceived, serial) || !knownModel) return {};
  if (type == 29) return {2};
  return knownModelFields(type, serial);
}

Positions positionsSent(std::string_view serialNumber, std::size_t size, bool knownModel) {
  constexpr SerialRange singleField{831000, 839999};
  constexpr Byte singlePosition = 38;
  const double serial = serialValue(serialNumber);
  const std::int16_t type = ModuleType(serialNumber);
  if (anyContains(neverSent, serial)) return {};
  if (twentySevens.contains(serial)) return {2};
  if (anyContains(notSent, serial)) return {};
  if (singleField.contains(serial)) return size < singlePosition ? Positions{} : Positions{singlePosition};
  if (!knownModel) return {};
  if (type == 29) return {2};
  if (type >= 75 && type <= 78) return {};
  return knownModelFields(type, serial);
}

Bytes ConvertTXSub(Bytes data, Byte position) {
  const std::size_t index = indexOf(data, position);
  const int n = byteValue(data[index]) & 15;
  data[index] = character(roundTo<Byte>(255 - std::exp2(n - 1) - std::exp2(n + 3)));
  return data;
}

Bytes ConvertRXSub(Bytes data, Byte position) {
  const std::size_t index = indexOf(data, position);
  const int mask = 15 - (byteValue(data[index]) & 15);
  data[index] = character(mask == 4 ? 3 : mask == 8 ? 4 : mask);
  return data;
}

Bytes ConvertTXData(std::string_view serialNumber, Bytes data, bool knownModel) {
  for (const Byte position : positionsSent(serialNumber, data.size(), knownModel))
    data = ConvertTXSub(std::move(data), position);
  return data;
}

Bytes ConvertRXData(std::string_view serialNumber, Bytes data, bool knownModel) {
  for (const Byte position : positionsReceived(serialNumber, knownModel))
    data = ConvertRXSub(std::move(data), position);
  return data;
}

}  // namespace velk::modules
