#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>

#include "component/in_out.h"
#include "values/value.h"

namespace velk {

class Serial;

constexpr std::size_t mostParameters = 9;

/// One argument of a method.
struct Parameter {
  std::string_view name;
  Type type = Type::none;
  bool inOut{};     ///< written back into the caller's variable
  bool optional{};  ///< may be left out
  int fallback{};   ///< what stands for an argument left out; for texts always the empty text
};

/// The value of an argument that was left out.
Value defaultOf(const Parameter& parameter);

enum class Kind : Byte { method, property };

/// One method or property of `Serial`, as every caller that does not know C++ types needs it.
struct Method {
  std::string_view name;
  int id{};  ///< dispatch id, fixed for ever
  Kind kind = Kind::method;
  Type result = Type::none;
  std::array<Parameter, mostParameters> slots{};
  std::size_t count = 0;
  std::string_view help;

  /// Calls the method, or reads the property. `arguments` hold values of the parameters' own types and
  /// receive what is written back.
  Value (*call)(Serial&, Value* arguments) = nullptr;

  /// Writes the property; none for methods.
  void (*put)(Serial&, const Value& value) = nullptr;

  [[nodiscard]] constexpr std::span<const Parameter> parameters() const { return {slots.data(), count}; }
};

/// How a C++ type of a signature is called elsewhere.
template <class T>
struct TypeOf;
template <>
struct TypeOf<bool> : std::integral_constant<Type, Type::boolean> {};
template <>
struct TypeOf<Byte> : std::integral_constant<Type, Type::byte> {};
template <>
struct TypeOf<std::int16_t> : std::integral_constant<Type, Type::integer> {};
template <>
struct TypeOf<std::string> : std::integral_constant<Type, Type::text> {};
template <>
struct TypeOf<Value> : std::integral_constant<Type, Type::variant> {};

/// An argument of a signature: its value type, and whether it is written back.
template <class T>
struct ArgumentOf {
  using Plain = std::remove_cvref_t<T>;
  static constexpr bool inOut = false;
};
template <class T>
struct ArgumentOf<InOut<T>> {
  using Plain = T;
  static constexpr bool inOut = true;
};

/// The value of type T in an argument slot.
template <class T>
T& slotValue(Value& slot) {
  if constexpr (std::is_same_v<T, Value>) {
    return slot;
  } else {
    return *std::get_if<T>(&slot);
  }
}

template <class Member>
struct Signature;
template <class Owner, class Result, class... Arguments>
struct Signature<Result (Owner::*)(Arguments...)> {
  static constexpr Type result = TypeOf<Result>::value;
  static constexpr std::array<Parameter, sizeof...(Arguments)> parameters{
      Parameter{.name = {},
                .type = TypeOf<typename ArgumentOf<Arguments>::Plain>::value,
                .inOut = ArgumentOf<Arguments>::inOut}...};

  template <auto member>
  static Value call(Serial& serial, Value* slots) {
    return callWith<member>(serial, slots, std::index_sequence_for<Arguments...>());
  }

 private:
  template <auto member, std::size_t... I>
  static Value callWith(Serial& serial, Value* slots, std::index_sequence<I...> /*unused*/) {
    return (serial.*member)(slotValue<typename ArgumentOf<Arguments>::Plain>(slots[I])...);
  }
};

template <class Member>
struct PropertyOf;
template <class Owner, class T>
struct PropertyOf<T Owner::*> {
  using Plain = T;
};

/// The name of an argument and, where it may be left out, what stands for it.
struct Named {
  std::string_view name;
  bool optional = false;
  int fallback{};

  // NOLINTBEGIN(google-explicit-constructor): rows of the method table are written as plain lists
  constexpr Named(const char* parameter) : name(parameter) {}
  constexpr Named(const char* parameter, int value) : name(parameter), optional(true), fallback(value) {}
  constexpr Named(const char* parameter, const char* /*empty*/) : name(parameter), optional(true) {}
  // NOLINTEND(google-explicit-constructor)
};

/// Binds rows of the method table to the members of `Serial`.
struct Bound {
  template <auto member>
  static constexpr auto call = &Signature<decltype(member)>::template call<member>;

  template <auto field>
  static Value get(Serial& serial, Value* /*arguments*/) {
    return serial.*field;
  }

  template <auto field>
  static void put(Serial& serial, const Value& value) {
    serial.*field = *std::get_if<typename PropertyOf<decltype(field)>::Plain>(&value);
  }
};

/// Leaves the rows unbound, for tools that describe the methods without linking them.
struct Described {
  template <auto member>
  static constexpr Value (*call)(Serial&, Value*) = nullptr;
  template <auto field>
  static constexpr Value (*get)(Serial&, Value*) = nullptr;
  template <auto field>
  static constexpr void (*put)(Serial&, const Value&) = nullptr;
};

template <auto member, class Binding>
consteval Method method(int id, std::string_view name, std::initializer_list<Named> names,
                        std::string_view help) {
  using S = Signature<decltype(member)>;
  Method row{.name = name,
             .id = id,
             .result = S::result,
             .count = names.size(),
             .help = help,
             .call = Binding::template call<member>};
  if (names.size() != S::parameters.size()) throw "a method names as many parameters as it has";
  std::size_t i = 0;
  for (const Named& named : names) {
    row.slots[i] = S::parameters[i];
    row.slots[i].name = named.name;
    row.slots[i].optional = named.optional;
    row.slots[i].fallback = named.fallback;
    ++i;
  }
  return row;
}

template <auto field, class Binding>
consteval Method property(int id, std::string_view name, std::string_view help) {
  return {.name = name,
          .id = id,
          .kind = Kind::property,
          .result = TypeOf<typename PropertyOf<decltype(field)>::Plain>::value,
          .help = help,
          .call = Binding::template get<field>,
          .put = Binding::template put<field>};
}

}  // namespace velk
