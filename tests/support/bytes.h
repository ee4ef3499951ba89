#pragma once

#include <initializer_list>

#include "values/bytes.h"
#include "values/runtime_error.h"

namespace velk::test {

/// A byte string from values.
inline Bytes bytes(std::initializer_list<int> values) {
  Bytes text;
  for (const int value : values) text += character(value);
  return text;
}

/// The number of the run-time error that a call raises, 0 when it raises none.
template <class Call>
int errorOf(Call call) {
  try {
    call();
  } catch (const RuntimeError& error) {
    return error.number();
  }
  return 0;
}

}  // namespace velk::test
