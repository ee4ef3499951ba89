#pragma once

#include <windows.h>
// The automation types need the base types first.
#include <oleauto.h>

#include "values/bytes.h"

namespace velk::com {

/// An array of bytes, in which hosts whose texts are no bytes have theirs.
constexpr VARTYPE byteArray = VT_ARRAY | VT_UI1;

/// The bytes of an array of one dimension; no array at all is empty. Run-time error 13 (type mismatch) for
/// more dimensions, or when the array does not give its bytes out.
Bytes bytesOf(SAFEARRAY* array);

/// Puts bytes into an array of one dimension, which keeps its lower bound, or into a new one where there is
/// none. Returns S_OK, DISP_E_TYPEMISMATCH for more dimensions, DISP_E_ARRAYISLOCKED for another number of
/// bytes than a fixed or locked array has, or E_OUTOFMEMORY.
HRESULT storeBytes(const Bytes& bytes, SAFEARRAY*& array);

}  // namespace velk::com
