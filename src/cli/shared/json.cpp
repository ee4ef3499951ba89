#include "cli/shared/json.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>

#include "values/bytes.h"

namespace velk::cli {
namespace {

using Library = nlohmann::ordered_json;

template <class... Functions>
struct Overload : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
Overload(Functions...) -> Overload<Functions...>;

/// By their places in the variant of the value.
constexpr std::array kindNames{"null",   "true or false", "a whole number", "a number",
                               "a text", "an array",      "an object"};

/// Refuses what the library would take: a name twice in one object, of which it would keep the last value,
/// and nesting so deep that nobody wrote it: values are copied, printed and destroyed by recursion.
class Names {
 public:
  void check(int depth, Library::parse_event_t event, const Library& value) {
    using ParseEvent = Library::parse_event_t;
    constexpr int deepest = 64;
    if (depth > deepest) throw JsonError("it is nested more than " + std::to_string(deepest) + " deep");
    if (event == ParseEvent::object_start) open_.emplace_back();
    if (event == ParseEvent::object_end) open_.pop_back();
    if (event != ParseEvent::key) return;
    const auto& name = value.get_ref<const std::string&>();
    if (!open_.back().insert(name).second) throw JsonError("\"" + name + "\" stands there twice");
  }

 private:
  std::vector<std::set<std::string>> open_;  ///< the names of the objects that are not complete yet
};

/// Without the library's own code for the error, and in words for whom JSON is news.
std::string reasonOf(const Library::exception& error) {
  std::string text = error.what();
  const auto codeEnd = text.find("] ");
  if (codeEnd != std::string::npos) text.erase(0, codeEnd + 2);
  constexpr std::string_view start = "parse error at ";
  return text.starts_with(start) ? "this is no JSON: " + text.substr(start.size()) : text;
}

}  // namespace

/// The same value as the library holds it.
struct JsonLibrary {
  static Library to(const Json& json) {
    return std::visit(Overload{[](const Json::Array& array) {
                                 Library::array_t result;
                                 for (const Json& element : array) result.push_back(to(element));
                                 return Library(std::move(result));
                               },
                               [](const Json::Object& object) {
                                 Library::object_t result;
                                 for (const auto& [name, value] : object)
                                   result.emplace_back(name, to(value));
                                 return Library(std::move(result));
                               },
                               [](const auto& value) { return Library(value); }},
                      json.content_);
  }

  static Json from(const Library& library) {
    switch (library.type()) {
      case Library::value_t::boolean:
        return library.get<bool>();
      case Library::value_t::number_integer:
        return library.get<std::int64_t>();
      case Library::value_t::number_unsigned:
        return fromUnsigned(library.get<std::uint64_t>());
      case Library::value_t::number_float:
        return library.get<double>();
      case Library::value_t::string:
        return library.get_ref<const std::string&>();
      case Library::value_t::array:
        return fromArray(library);
      case Library::value_t::object:
        return fromObject(library);
      default:
        return nullptr;
    }
  }

 private:
  static Json fromUnsigned(std::uint64_t number) {
    if (std::in_range<std::int64_t>(number)) return static_cast<std::int64_t>(number);
    return static_cast<double>(number);
  }

  static Json fromArray(const Library& library) {
    Json::Array array;
    for (const Library& element : library) array.push_back(from(element));
    return Json::of(std::move(array));
  }

  static Json fromObject(const Library& library) {
    Json::Object object;
    for (const auto& [name, value] : library.items()) object.emplace_back(name, from(value));
    return Json::of(std::move(object));
  }
};

Json::Json(std::nullptr_t) {}
Json::Json(double value) : content_(value) {}
Json::Json(const std::vector<std::string>& texts) : content_(Array(texts.begin(), texts.end())) {}
Json::Json(const Json& other) = default;
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(const Json& other) = default;
Json& Json::operator=(Json&& other) noexcept = default;
Json::~Json() = default;

Json::Json(std::initializer_list<Json> values) {
  const bool isObject = std::all_of(values.begin(), values.end(), [](const Json& value) {
    const auto* const pair = std::get_if<Array>(&value.content_);
    return pair != nullptr && pair->size() == 2 &&
           std::holds_alternative<std::string>(pair->front().content_);
  });
  if (!isObject) {
    content_ = Array(values);
    return;
  }
  Object object;
  for (const Json& value : values)
    object.emplace_back(value.elements()[0].get<std::string>(), value.elements()[1]);
  content_ = std::move(object);
}

Json Json::of(Content content) {
  Json json;
  json.content_ = std::move(content);
  return json;
}

Json Json::ofBool(bool value) {
  return of(value);
}

Json Json::ofInteger(std::int64_t value) {
  return of(value);
}

Json Json::ofText(std::string_view text) {
  return of(std::string(text));
}

Json Json::array() {
  return of(Array());
}

Json Json::object() {
  return of(Object());
}

Json Json::parse(std::istream& in) {
  try {
    Names names;
    return JsonLibrary::from(
        Library::parse(in, [&](int depth, Library::parse_event_t event, const Library& value) {
          names.check(depth, event, value);
          return true;
        }));
  } catch (const Library::exception& error) {
    throw JsonError(reasonOf(error));
  }
}

std::string Json::dump(int indentation) const {
  return JsonLibrary::to(*this).dump(indentation, ' ', false, Library::error_handler_t::replace);
}

void Json::push_back(Json element) {
  if (std::holds_alternative<std::nullptr_t>(content_)) content_ = Array();
  std::get<Array>(content_).push_back(std::move(element));
}

void Json::append(std::string_view name, Json value) {
  std::get<Object>(content_).emplace_back(name, std::move(value));
}

Json& Json::operator[](std::string_view name) {
  if (std::holds_alternative<std::nullptr_t>(content_)) content_ = Object();
  auto& members = std::get<Object>(content_);
  const auto found = std::find_if(members.begin(), members.end(),
                                  [&](const Member& member) { return member.first == name; });
  return found != members.end() ? found->second : members.emplace_back(name, Json()).second;
}

const Json* Json::find(std::string_view name) const {
  const Object& members = items();
  const auto found = std::find_if(members.begin(), members.end(),
                                  [&](const Member& member) { return member.first == name; });
  return found == members.end() ? nullptr : &found->second;
}

const Json& Json::at(std::string_view name) const {
  if (const Json* const member = find(name)) return *member;
  throw JsonError("there is no \"" + std::string(name) + "\"");
}

template <class T>
const T& Json::held() const {
  if (const T* const value = std::get_if<T>(&content_)) return *value;
  throw JsonError(std::string(kindNames.at(Content(T()).index())) + " is expected, not " +
                  kindNames.at(content_.index()));
}

bool Json::boolean() const {
  return held<bool>();
}

const std::string& Json::text() const {
  return held<std::string>();
}

const Json::Array& Json::elements() const {
  return held<Array>();
}

const Json::Object& Json::items() const {
  return held<Object>();
}

std::int64_t Json::integer(std::int64_t least, std::int64_t most) const {
  const std::int64_t value = held<std::int64_t>();
  if (value >= least && value <= most) return value;
  throw JsonError("a number from " + std::to_string(least) + " to " + std::to_string(most) +
                  " is expected, not " + std::to_string(value));
}

std::ostream& operator<<(std::ostream& out, const Json& json) {
  return out << json.dump();
}

Json jsonOfBytes(std::string_view bytes) {
  Json json = Json::array();
  for (const char c : bytes) json.push_back(byteValue(c));
  return json;
}

}  // namespace velk::cli
