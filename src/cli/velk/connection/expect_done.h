#pragma once

#include <string>

#include "values/bytes.h"

namespace velk::cli {

/// Throws a `Failure` that names what was tried, unless the result byte is 0.
void expectDone(Byte result, const std::string& what);

}  // namespace velk::cli
