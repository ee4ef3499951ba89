#pragma once

#include <optional>

#include "values/bytes.h"

namespace velk::cli {

/// Where the end mark stands in a list of events, if these first bytes of the list hold it.
std::optional<std::size_t> endOfEvents(const Bytes& list);

}  // namespace velk::cli
