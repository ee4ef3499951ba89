#pragma once

#include <string_view>

#include "component/methods.h"
#include "component/serial.h"
#include "support/input.h"

namespace velk::fuzz {

/// Takes one call from the input, a method by dispatch id and its arguments as values of any type, carries it
/// out as every caller through the method table does, and requires what holds of every call: it ends, it
/// raises no exception but `RuntimeError`, and its result has the type that the table names. Methods that
/// open and close links are left out unless `withLinks`.
void call(Serial& serial, Input& input, bool withLinks);

/// The bytes that make `call` take a method by its name with texts for arguments, such as "LdZr|7|3".
Bytes recipe(std::string_view words);

}  // namespace velk::fuzz
