#pragma once

#include <cstddef>

namespace velk::cli::system {

/// Reads what standard input has, as soon as it has something. Returns the number of bytes: none at its end, or when a
/// request to end (see interrupts.h) has come, or comes first.
std::size_t readInput(char* to, std::size_t size);

}  // namespace velk::cli::system
