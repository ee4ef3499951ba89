#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "component/method.h"

namespace velk {

/// Every method and property of `Serial`, in the order of their dispatch ids.
std::span<const Method> methods();

/// By name in any case; none when there is no such name.
const Method* findMethod(std::string_view name);

/// By dispatch id; none when there is no such id.
const Method* findMethod(int id);

/// The position of a parameter by its name in any case.
std::optional<std::size_t> findParameter(const Method& method, std::string_view name);

/// Why a call cannot be made, and the parameter (from 0) at fault.
struct CallFault {
  enum Reason { notOptional, typeMismatch, overflow } reason;
  std::size_t parameter;
};

/// Brings the arguments of a call into the types of the parameters: converts those that are given and puts
/// defaults for those that are not. Both spans have one element for each parameter.
std::optional<CallFault> complete(const Method& method, std::span<Value> arguments,
                                  std::span<const bool> given);

}  // namespace velk
