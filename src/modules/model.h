#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "values/bytes.h"

/// Who a module is: its serial number, its type, its model.
namespace velk::modules {

/// The module type of a serial number: its first two digits, folded.
std::int16_t ModuleType(std::string_view serieNr);

/// Whether a text stands anywhere in the list of known models, separators included.
bool inModelList(std::string_view name);

/// The numeric value of a whole serial number.
double serialValue(std::string_view serieNr);

/// What `Serial` keeps of the module that was read last.
struct Identity {
  std::string model;     ///< CurModType
  Byte cpuType = 0;      ///< CurCPUtype
  std::string firmware;  ///< CurFWVersie
  bool known = false;    ///< CurKnownModel: records carry one leading byte more
};

/// A range of whole serial numbers, both ends included.
struct SerialRange {
  double first;
  double last;

  [[nodiscard]] constexpr bool contains(double serial) const { return serial >= first && serial <= last; }
};

}  // namespace velk::modules
