#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace velk::cli {

/// A JSON text that cannot be read, or a value of another kind than asked for: a sentence.
struct JsonError : std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

/// A JSON value. Objects keep the order of their members. json.cpp alone sees the library that reads and
/// prints: it costs a compiler seconds in each file.
class Json {
 public:
  using Array = std::vector<Json>;
  using Member = std::pair<std::string, Json>;
  using Object = std::vector<Member>;

  // Values stand in lists as they are: {"preset", preset.number}.
  // NOLINTBEGIN(google-explicit-constructor)
  Json(std::nullptr_t = nullptr) {}
  template <std::same_as<bool> T>
  Json(T value) : value_(value) {}
  template <std::integral T>
  requires(!std::same_as<T, bool>) Json(T value) : value_(static_cast<std::int64_t>(value)) {}
  Json(double value) : value_(value) {}
  template <std::convertible_to<std::string_view> T>
  requires(!std::same_as<T, std::nullptr_t>) Json(const T& text)
      : value_(std::string(std::string_view(text))) {}
  template <class T>
  Json(const std::vector<T>& values) : value_(Array(values.begin(), values.end())) {}
  /// An object, if each value is a pair that begins with a text: {{"output", 5}, {"mode", "T1"}}; else an
  /// array: {1, 2}.
  Json(std::initializer_list<Json> values);
  // NOLINTEND(google-explicit-constructor)

  /// Without elements or members, which a list cannot tell.
  static Json array() { return Json(Array{}); }
  static Json object();

  /// Throws `JsonError` when the text is no JSON, or an object has a name twice.
  static Json parse(std::istream& in);

  /// In one line, or in many that are indented by so many blanks. What is no UTF-8 is printed as U+FFFD.
  [[nodiscard]] std::string dump(int indentation = -1) const;

  /// Appends to an array; null becomes one.
  void push_back(Json element);

  /// A member, which is added as null when there is none; null becomes an object.
  Json& operator[](std::string_view name);

  /// A member. Throws `JsonError` when there is none.
  [[nodiscard]] const Json& at(std::string_view name) const;

  /// A member, if there is one.
  [[nodiscard]] const Json* find(std::string_view name) const;

  /// A member's value, or another one where there is none. Throws `JsonError` like `get`.
  template <class T>
  [[nodiscard]] T value(std::string_view name, T fallback) const {
    const Json* const member = find(name);
    return member == nullptr ? fallback : member->get<T>();
  }

  /// The value as a text, a bool or an integer type. Throws `JsonError` when it is none, or out of T's range.
  template <class T>
  [[nodiscard]] T get() const {
    if constexpr (std::integral<T> && !std::same_as<T, bool>) {
      static_assert(std::in_range<std::int64_t>(std::numeric_limits<T>::max()));
      return static_cast<T>(integer(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    } else {
      return held<T>();
    }
  }

  /// The elements of an array, the members of an object. Throw `JsonError` when it is none.
  [[nodiscard]] const Array& elements() const { return held<Array>(); }
  [[nodiscard]] const Object& items() const { return held<Object>(); }
  [[nodiscard]] Array::const_iterator begin() const { return elements().begin(); }
  [[nodiscard]] Array::const_iterator end() const { return elements().end(); }

 private:
  friend struct JsonLibrary;
  using Value = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object>;

  template <class T>
  [[nodiscard]] const T& held() const;
  [[nodiscard]] std::int64_t integer(std::int64_t least, std::int64_t most) const;

  Value value_;
};

std::ostream& operator<<(std::ostream& out, const Json& json);

}  // namespace velk::cli
