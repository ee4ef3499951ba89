#pragma once

namespace velk::cli::system {

/// A descriptor that can be read from a request to end until it is forgotten; -1 where none has been kept yet.
int interruptArrival();

}  // namespace velk::cli::system
