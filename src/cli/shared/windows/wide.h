#pragma once

#include <string>
#include <string_view>

namespace velk::cli {

/// UTF-8 as UTF-16; text that is no UTF-8 is taken as the system's code page has it.
std::wstring wideOf(std::string_view text);

/// UTF-16 as UTF-8. Halves of surrogate pairs that stand alone become U+FFFD, which no text of the controller
/// has.
std::string utf8Of(std::wstring_view text);

}  // namespace velk::cli
