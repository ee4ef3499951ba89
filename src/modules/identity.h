#pragma once

#include <string>

#include "values/bytes.h"

namespace velk::modules {

/// What `Serial` keeps of the module that was read last.
struct Identity {
  std::string model;     ///< CurModType
  Byte cpuType{};        ///< CurCPUtype
  std::string firmware;  ///< CurFWVersie
  bool known = false;    ///< CurKnownModel: records carry one leading byte more
};

}  // namespace velk::modules
