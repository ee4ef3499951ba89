#include "support/calls.h"

#include <array>

#include "support/target.h"
#include "values/runtime_error.h"

namespace velk::fuzz {
namespace {

/// The shapes that an argument may have; the number is what stands for it in the input.
enum Shape : Byte { missing, empty, truth, byte, integer, large, fraction, text, shapes };

bool isLink(const Method& method) {
  constexpr int first = 10;  // OpenCom
  constexpr int last = 13;   // CloseTCP
  return method.id >= first && method.id <= last;
}

Value valueOf(Shape shape, Input& input) {
  switch (shape) {
    case truth:
      return (input.byte() & 1) != 0;
    case byte:
      return input.byte();
    case integer:
      return static_cast<std::int16_t>(input.number());
    case large:
      return input.number();
    case fraction:
      return input.number() / 256.0;
    case text:
      return input.text();
    default:
      return {};
  }
}

}  // namespace

void call(Serial& serial, Input& input, bool withLinks) {
  const Method* const method = findMethod(int{input.byte()});
  if (method == nullptr || (isLink(*method) && !withLinks)) return;
  if (method->put != nullptr && (input.byte() & 1) != 0) {
    try {
      method->put(serial, convert(valueOf(static_cast<Shape>(input.below(shapes)), input), method->result));
    } catch (const RuntimeError&) {
      return;
    }
  }

  std::array<Value, mostParameters> arguments;
  std::array<bool, mostParameters> given{};
  for (std::size_t i = 0; i < method->count; ++i) {
    const auto shape = static_cast<Shape>(input.below(shapes));
    given[i] = shape != missing;
    arguments[i] = valueOf(shape, input);
  }
  if (const auto fault = complete(*method, std::span(arguments).first(method->count), given)) {
    require(fault->parameter < method->count, "a fault names a parameter of the method");
    return;
  }
  try {
    require(holds(method->call(serial, arguments.data()), method->result),
            "a result has the type of the table");
  } catch (const RuntimeError& error) {
    require(error.number() > 0, "a run-time error has a number");
  }
  for (std::size_t i = 0; i < method->count; ++i) {
    require(holds(arguments[i], method->slots[i].type), "an argument keeps its type");
  }
}

Bytes recipe(std::string_view words) {
  Bytes bytes;
  for (std::size_t start = 0; start <= words.size();) {
    const std::string_view word = words.substr(start, words.find('|', start) - start);
    start += word.size() + 1;  // an empty word at the end counts
    if (bytes.empty()) {
      const Method* const method = findMethod(word);
      require(method != nullptr, "a call names a method");
      bytes += character(method->id);
      if (method->put != nullptr) bytes += '\0';
    } else {
      bytes += Bytes{character(text), character(static_cast<int>(word.size()))} + Bytes(word);
    }
  }
  return bytes;
}

}  // namespace velk::fuzz
