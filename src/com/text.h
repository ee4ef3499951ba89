#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oleauto.h>

#include <string_view>

#include "values/bytes.h"

namespace velk::com {

/// The bytes of a text of the host, one for each character: its code up to 255, above that its byte in the
/// system's code page. Run-time error 5 where there is none.
Bytes bytesOf(std::wstring_view text);

/// The same for an automation string, which may be null.
Bytes bytesOf(BSTR text);

/// A new automation string with one character, of code 0 to 255, for each byte.
BSTR newText(std::string_view bytes);

}  // namespace velk::com
