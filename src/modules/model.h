#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "values/numbers.h"

/// Who a module is: its serial number, its type, its model.
namespace velk::modules {

/// The module type of a serial number: its first two digits, folded.
std::int16_t ModuleType(std::string_view serialNumber);

/// Whether a text stands anywhere in the list of known models, separators included.
bool inModelList(std::string_view name);

/// Whether this is the controller's own module, which has no version, checks and polls.
bool isOwnModule(std::string_view serialNumber);

/// A range of serial numbers, both ends included.
struct SerialRange {
  double first;
  double last;

  [[nodiscard]] constexpr bool contains(double serial) const { return serial >= first && serial <= last; }
};

constexpr SerialRange all{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};

constexpr SerialRange upTo(double last) {
  return {all.first, last};
}

constexpr SerialRange from(double first) {
  return {first, all.last};
}

/// Modules of type 7 whose records have 32 bytes and, in known models, eight selections.
constexpr SerialRange longSevens{230000, 839999};

/// A module as far as its records go.
struct Subject {
  std::string_view serialNumber;
  bool known;  ///< of a known model

  [[nodiscard]] std::int16_t type() const { return ModuleType(serialNumber); }
  [[nodiscard]] double serial() const { return leadingNumber(serialNumber); }
};

}  // namespace velk::modules
