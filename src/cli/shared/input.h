#pragma once

#include <string>

namespace velk::cli {

/// Reads a line of standard input, without its end; false at the end of the input. Behind `surviveInterrupts` also false
/// when a request to end has come, or comes before the line is whole.
bool readLine(std::string& line);

}  // namespace velk::cli
