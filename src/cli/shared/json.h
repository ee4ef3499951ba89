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
/// prints: it costs a compiler seconds in each file. For the same reason little stands inline here.
class Json {
 public:
  using Array = std::vector<Json>;
  using Member = std::pair<std::string, Json>;
  using Object = std::vector<Member>;

  // Values stand in lists as they are: {"preset", preset.number}.
  // NOLINTBEGIN(google-explicit-constructor)
  Json(std::nullptr_t = nullptr);
  template <std::integral T>
  Json(T value)
      : Json(std::same_as<T, bool> ? ofBool(value != 0) : ofInteger(static_cast<std::int64_t>(value))) {}
  Json(double value);
  template <std::convertible_to<std::string_view> T>
  Json(const T& text) : Json(ofText(text)) {}
  Json(const std::vector<std::string>& texts);
  /// An object, if each value is a pair that begins with a text: {{"output", 5}, {"mode", "T1"}}; else an
  /// array: {1, 2}.
  Json(std::initializer_list<Json> values);
  // NOLINTEND(google-explicit-constructor)

  Json(const Json& other);
  Json(Json&& other) noexcept;
  Json& operator=(const Json& other);
  Json& operator=(Json&& other) noexcept;
  ~Json();

  /// Without elements or members, which a list cannot tell.
  static Json array();
  static Json object();

  /// Throws `JsonError` when the text is no JSON, or an object has a name twice.
  static Json parse(std::istream& in);

  /// In one line, or in many that are indented by so many blanks. What is no UTF-8 is printed as U+FFFD.
  [[nodiscard]] std::string dump(int indentation = -1) const;

  /// Appends to an array; null becomes one.
  void push_back(Json element);

  /// Appends a member to an object that has none of that name, which nobody looks for: objects may be long.
  void append(std::string_view name, Json value);

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
    if constexpr (std::same_as<T, bool>) {
      return boolean();
    } else if constexpr (std::same_as<T, std::string>) {
      return text();
    } else {
      static_assert(std::in_range<std::int64_t>(std::numeric_limits<T>::max()));
      return static_cast<T>(integer(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
  }

  /// The elements of an array, the members of an object. Throw `JsonError` when it is none.
  [[nodiscard]] const Array& elements() const;
  [[nodiscard]] const Object& items() const;
  [[nodiscard]] Array::const_iterator begin() const { return elements().begin(); }
  [[nodiscard]] Array::const_iterator end() const { return elements().end(); }

 private:
  friend struct JsonLibrary;
  using Content = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object>;

  static Json of(Content content);
  static Json ofBool(bool value);
  static Json ofInteger(std::int64_t value);
  static Json ofText(std::string_view text);

  template <class T>
  [[nodiscard]] const T& held() const;
  [[nodiscard]] bool boolean() const;
  [[nodiscard]] const std::string& text() const;
  [[nodiscard]] std::int64_t integer(std::int64_t least, std::int64_t most) const;

  Content content_;
};

std::ostream& operator<<(std::ostream& out, const Json& json);

/// An array of byte values.
Json jsonOfBytes(std::string_view bytes);

}  // namespace velk::cli
