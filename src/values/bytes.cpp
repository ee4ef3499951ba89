#include "values/bytes.h"

#include "values/runtime_error.h"

namespace velk {

Byte byteAt(std::string_view text, std::size_t index) {
  if (index >= text.size()) throw RuntimeError(RuntimeError::invalidArgument);
  return byteValue(text[index]);
}

Bytes padded(std::string_view text, std::size_t size, char fill) {
  Bytes result(text.substr(0, size));
  result.resize(size, fill);
  return result;
}

Byte checkedByte(long value) {
  if (value < 0 || value > 255) throw RuntimeError(RuntimeError::overflow);
  return static_cast<Byte>(value);
}

}  // namespace velk
