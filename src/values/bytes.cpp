#include "values/bytes.h"

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

}  // namespace velk
