#include "component/windows/call.h"

#include <algorithm>

#include "values/runtime_error.h"

namespace velk::com {
namespace {

HRESULT codeOf(CallFault::Reason reason) {
  constexpr std::array codes{DISP_E_PARAMNOTOPTIONAL, DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW};
  return codes.at(reason);
}

std::size_t requiredCount(const Method& method) {
  const auto parameters = method.parameters();
  return static_cast<std::size_t>(
      std::count_if(parameters.begin(), parameters.end(), [](const Parameter& p) { return !p.optional; }));
}

}  // namespace

HRESULT Call::take() {
  if (const HRESULT outcome = place(); FAILED(outcome)) return outcome;
  if (const HRESULT outcome = load(); FAILED(outcome)) return outcome;
  const auto fault = complete(method_, {values_.data(), method_.count}, {given_.data(), method_.count});
  return fault ? failed(codeOf(fault->reason), fault->parameter) : S_OK;
}

/// Hosts list the arguments backwards: named ones first, then the others from the last to the first.
HRESULT Call::place() {
  const std::size_t count = passed_.cArgs;
  const std::size_t named = passed_.cNamedArgs;
  if (count > method_.count || named > count) return DISP_E_BADPARAMCOUNT;
  for (std::size_t i = named; i < count; ++i) sources_[count - 1 - i] = &passed_.rgvarg[i];
  for (std::size_t i = 0; i < named; ++i) {
    const auto parameter = static_cast<std::size_t>(passed_.rgdispidNamedArgs[i]);
    if (parameter >= method_.count || sources_[parameter] != nullptr) {
      fault_ = static_cast<UINT>(i);
      return DISP_E_PARAMNOTFOUND;
    }
    sources_[parameter] = &passed_.rgvarg[i];
  }
  return count < method_.count && count < requiredCount(method_) ? DISP_E_BADPARAMCOUNT : S_OK;
}

HRESULT Call::load() {
  for (std::size_t i = 0; i < method_.count; ++i) {
    if (sources_[i] == nullptr) continue;
    const Argument argument(*sources_[i]);
    given_[i] = !argument.omitted();
    if (!given_[i]) continue;
    try {
      argument.load(values_[i]);
    } catch (const RuntimeError& error) {
      if (error.number() != RuntimeError::typeMismatch) throw;
      return failed(DISP_E_TYPEMISMATCH, i);
    }
  }
  return S_OK;
}

HRESULT Call::giveBack() {
  HRESULT outcome = S_OK;
  for (std::size_t i = 0; i < method_.count; ++i) {
    const Parameter& parameter = method_.slots[i];
    if (!parameter.inOut || !given_[i]) continue;
    const Argument argument(*sources_[i]);
    // A variable that holds the value already keeps its type; one that holds nothing yet does not.
    Value before;
    argument.load(before);
    const bool empty = std::holds_alternative<std::monostate>(before);
    if (!empty && convert(before, parameter.type) == values_[i]) continue;
    const HRESULT written = argument.assign(values_[i]);
    if (FAILED(written)) outcome = failed(written, i);
  }
  return outcome;
}

HRESULT Call::failed(HRESULT code, std::size_t parameter) {
  if (sources_[parameter] != nullptr) fault_ = static_cast<UINT>(sources_[parameter] - passed_.rgvarg);
  return code;
}

}  // namespace velk::com
