#pragma once

#include <gtest/gtest.h>

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

/// A result in the table of `expectEach`: the call raises this run-time error.
constexpr int raises(int number) {
  return 1'000'000 + number;
}

/// Holds a function of one argument against a table of arguments and results.
template <class Argument = int, class Function>
void expectEach(std::initializer_list<std::pair<Argument, double>> table, Function function) {
  for (const auto& [argument, result] : table) {
    double given = 0;
    const int error = errorOf([&, a = argument] { given = static_cast<double>(function(a)); });
    EXPECT_EQ(error == 0 ? given : raises(error), result) << "of " << argument;
  }
}

}  // namespace velk::test
