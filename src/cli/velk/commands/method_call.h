#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/shared/exit_status.h"
#include "component/method.h"
#include "component/serial.h"

namespace velk::cli {

/// A method with its arguments, ready to be called.
struct MethodCall {
  const Method* method = nullptr;
  std::vector<Value> arguments;
};

/// What a call came to.
struct CallResult {
  Value result;
  std::optional<int> errorNumber;  ///< of a run-time error; `result` is empty then
  std::string errorText;
};

/// Reads a method's name and its arguments, by position or as NAME=VALUE, texts with escapes. Throws
/// std::invalid_argument with a sentence.
MethodCall parseCall(const std::string& name, const std::vector<std::string>& words);

/// Sets a property from "NAME=VALUE". Throws std::invalid_argument with a sentence.
void setProperty(Serial& serial, const std::string& assignment);

/// Calls; the arguments receive what is written back.
CallResult perform(Serial& serial, MethodCall& call);

/// The byte that says how a call ended; none where the result says no such thing.
std::optional<Byte> codeOf(const MethodCall& call, const Value& result);

/// Bad when a result byte or the status of a transaction is not 0, or when there was a run-time error.
ExitStatus exitStatusOf(const MethodCall& call, const CallResult& result);

/// The result with its meaning, then each by-reference argument as NAME=VALUE on a line of its own. A
/// run-time error is left to the caller.
std::string textOf(const MethodCall& call, const CallResult& result);

/// The same as one JSON object: "method", "result", "meaning" where the result has one, "arguments" with what
/// was written back; or "error" with "number" and "text".
std::string jsonOf(const MethodCall& call, const CallResult& result);

/// All methods and properties with their parameters, types and defaults.
std::string listOfMethods();

/// The same as a JSON array.
std::string jsonOfMethods();

}  // namespace velk::cli
