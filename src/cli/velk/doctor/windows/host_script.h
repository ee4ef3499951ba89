#pragma once

#include <string_view>

namespace velk::cli {

/// A script in VBScript that goes through the methods of the component over one link to a simulated
/// controller. Arguments: "tcp" port password kind, or "com" port "echo" or "fast". Prints a line that begins
/// with "FAILED" for each fault, and at the end "compared: " with the number of results that it compared.
/// Lines end with LF.
extern const std::string_view hostScript;

}  // namespace velk::cli
