#include "cli/velk/commands/method_call.h"

#include <stdexcept>

#include "cli/shared/escapes.h"
#include "cli/shared/json.h"
#include "cli/shared/nearest.h"
#include "component/methods.h"
#include "component/result_codes.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::cli {
namespace {

const Method& methodNamed(const std::string& name) {
  const Method* const method = findMethod(name);
  if (method != nullptr) return *method;
  std::vector<std::string> names;
  for (const Method& each : methods()) names.emplace_back(each.name);
  throw std::invalid_argument("there is no method \"" + name + "\"" +
                              didYouMean(name, names, R"(; see "velk methods")"));
}

std::string faultText(const Method& method, const CallFault& fault) {
  const std::string name(method.slots[fault.parameter].name);
  switch (fault.reason) {
    case CallFault::notOptional:
      return "the argument " + name + " is missing";
    case CallFault::overflow:
      return "the value of " + name + " does not fit its type";
    case CallFault::typeMismatch:
      break;
  }
  return "the value of " + name + " is no number";
}

/// Arguments by position, and by name in any order.
class Arguments {
 public:
  explicit Arguments(const Method& method) : method_(method), values_(method.count) {}

  void add(const std::string& word) {
    const auto equals = word.find('=');
    const auto named =
        equals == std::string::npos ? std::nullopt : findParameter(method_, word.substr(0, equals));
    if (named) return put(*named, word.substr(equals + 1));
    if (position_ == method_.count) {
      throw std::invalid_argument(std::string(method_.name) + " takes no argument \"" + word + "\"");
    }
    put(position_++, word);
  }

  /// In the types of the parameters, with defaults for those left out. A place for a result needs no value:
  /// there are no variables here that it could come from.
  std::vector<Value> complete() {
    for (std::size_t i = 0; i < method_.count; ++i) {
      if (given_.at(i) || !method_.slots[i].inOut) continue;
      values_[i] = defaultOf(method_.slots[i]);
      given_[i] = true;
    }
    if (const auto fault = velk::complete(method_, values_, std::span(given_).first(method_.count))) {
      throw std::invalid_argument(faultText(method_, *fault));
    }
    return std::move(values_);
  }

 private:
  void put(std::size_t parameter, std::string_view text) {
    if (given_.at(parameter)) {
      throw std::invalid_argument("the argument " + std::string(method_.slots[parameter].name) +
                                  " is given twice");
    }
    values_[parameter] = unescaped(text);
    given_[parameter] = true;
  }

  const Method& method_;
  std::vector<Value> values_;
  std::array<bool, mostParameters> given_{};
  std::size_t position_ = 0;
};

Json jsonValue(const Value& value) {
  return std::visit(
      [](const auto& held) -> Json {
        using Held = std::remove_cvref_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          return nullptr;
        } else if constexpr (std::is_same_v<Held, std::string>) {
          return utf8OfBytes(held);
        } else {
          return held;
        }
      },
      value);
}

template <class Use>
void forEachWrittenBack(const MethodCall& call, Use use) {
  for (std::size_t i = 0; i < call.method->count; ++i) {
    const Parameter& parameter = call.method->slots[i];
    if (parameter.inOut) use(std::string(parameter.name), call.arguments[i]);
  }
}

constexpr std::array typeNames{"none", "boolean", "byte", "integer", "text", "variant"};

std::string typeName(Type type) {
  return typeNames.at(static_cast<std::size_t>(type));
}

std::string describe(const Parameter& parameter) {
  std::string text(parameter.name);
  text += parameter.inOut ? " in/out " : " ";
  text += typeName(parameter.type);
  if (!parameter.optional) return text;
  const Value fallback = defaultOf(parameter);
  const bool isText = parameter.type == Type::text;
  return text + " = " + (isText ? "\"" + toText(fallback) + "\"" : toText(fallback));
}

}  // namespace

MethodCall parseCall(const std::string& name, const std::vector<std::string>& words) {
  MethodCall call{.method = &methodNamed(name), .arguments = {}};
  Arguments arguments(*call.method);
  for (const std::string& word : words) arguments.add(word);
  call.arguments = arguments.complete();
  return call;
}

void setProperty(Serial& serial, const std::string& assignment) {
  const auto equals = assignment.find('=');
  if (equals == std::string::npos) throw std::invalid_argument("a property is set as NAME=VALUE");
  const Method& property = methodNamed(assignment.substr(0, equals));
  if (property.put == nullptr) throw std::invalid_argument(std::string(property.name) + " is no property");
  try {
    property.put(serial, convert(unescaped(assignment.substr(equals + 1)), property.result));
  } catch (const RuntimeError&) {
    throw std::invalid_argument("the property " + std::string(property.name) + " cannot hold this value");
  }
}

CallResult perform(Serial& serial, MethodCall& call) {
  try {
    return {.result = call.method->call(serial, call.arguments.data()), .errorNumber = {}, .errorText = {}};
  } catch (const RuntimeError& error) {
    return {.result = {}, .errorNumber = error.number(), .errorText = error.what()};
  }
}

std::optional<Byte> codeOf(const MethodCall& call, const Value& result) {
  switch (resultKindOf(*call.method)) {
    case ResultKind::code:
      return std::get<Byte>(convert(result, Type::byte));
    case ResultKind::reply: {
      // An empty reply is none.
      const std::string reply = toText(result);
      return reply.empty() ? Byte{otherFailure} : byteAt(reply, 0);
    }
    case ResultKind::value:
      break;
  }
  return std::nullopt;
}

ExitStatus exitStatusOf(const MethodCall& call, const CallResult& result) {
  if (result.errorNumber) return runtimeError;
  return codeOf(call, result.result).value_or(0) == 0 ? success : badResult;
}

std::string textOf(const MethodCall& call, const CallResult& result) {
  std::string text = escaped(toText(result.result));
  if (const auto code = codeOf(call, result.result)) text += "  (" + meaningOf(*code) + ")";
  text += '\n';
  forEachWrittenBack(call, [&](const std::string& name, const Value& value) {
    text += name + "=" + escaped(toText(value)) + "\n";
  });
  return text;
}

std::string jsonOf(const MethodCall& call, const CallResult& result) {
  Json json{{"method", call.method->name}};
  if (result.errorNumber) {
    json["error"] = {{"number", *result.errorNumber}, {"text", result.errorText}};
  } else {
    json["result"] = jsonValue(result.result);
    if (const auto code = codeOf(call, result.result)) json["meaning"] = meaningOf(*code);
  }
  json["arguments"] = Json::object();
  forEachWrittenBack(
      call, [&](const std::string& name, const Value& value) { json["arguments"][name] = jsonValue(value); });
  return json.dump();
}

std::string jsonOfMethods() {
  Json list = Json::array();
  for (const Method& method : methods()) {
    Json parameters = Json::array();
    for (const Parameter& parameter : method.parameters()) {
      Json json{{"name", parameter.name},
                {"type", typeName(parameter.type)},
                {"written_back", parameter.inOut},
                {"optional", parameter.optional}};
      if (parameter.optional) json["default"] = jsonValue(defaultOf(parameter));
      parameters.push_back(std::move(json));
    }
    list.push_back({{"name", method.name},
                    {"kind", method.kind == Kind::method ? "method" : "property"},
                    {"parameters", std::move(parameters)},
                    {"result", typeName(method.result)},
                    {"help", method.help}});
  }
  return list.dump();
}

std::string listOfMethods() {
  std::string text;
  for (const Method& method : methods()) {
    text += method.name;
    if (method.kind == Kind::method) {
      std::string list;
      for (const Parameter& parameter : method.parameters()) {
        list += (list.empty() ? "" : ", ") + describe(parameter);
      }
      text += "(" + list + ")";
    }
    text += " : " + typeName(method.result) + "\n    " + std::string(method.help) + "\n";
  }
  return text;
}

}  // namespace velk::cli
