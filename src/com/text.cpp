#include "com/text.h"

#include <algorithm>
#include <new>

#include "values/runtime_error.h"

namespace velk::com {
namespace {

constexpr wchar_t highestByte = 255;

char byteOf(wchar_t c) {
  if (c <= highestByte) return character(c);
  char bytes[2] = {};
  BOOL replaced = FALSE;
  const int count =
      WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &c, 1, bytes, sizeof bytes, nullptr, &replaced);
  if (count != 1 || replaced != FALSE) throw RuntimeError(RuntimeError::invalidArgument);
  return bytes[0];
}

}  // namespace

Bytes bytesOf(std::wstring_view text) {
  Bytes bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(), byteOf);
  return bytes;
}

Bytes bytesOf(BSTR text) {
  return bytesOf(std::wstring_view(text, SysStringLen(text)));
}

BSTR newText(std::string_view bytes) {
  BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(bytes.size()));
  if (text == nullptr) throw std::bad_alloc();
  std::transform(bytes.begin(), bytes.end(), text, byteValue);
  return text;
}

}  // namespace velk::com
