#include "com/call.h"

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

HRESULT HostCall::take() {
  if (const HRESULT outcome = place(); FAILED(outcome)) return outcome;
  if (const HRESULT outcome = load(); FAILED(outcome)) return outcome;
  const auto fault = complete(method_, {values_.data(), method_.count}, {given_.data(), method_.count});
  if (fault) return failed(codeOf(fault->reason), fault->parameter);
  remember();
  return S_OK;
}

/// Hosts list the arguments backwards: named ones first, then the others from the last to the first.
HRESULT HostCall::place() {
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

HRESULT HostCall::load() {
  for (std::size_t i = 0; i < method_.count; ++i) {
    if (sources_[i] == nullptr) continue;
    if (const HRESULT outcome = load(i); FAILED(outcome)) return outcome;
  }
  return S_OK;
}

HRESULT HostCall::load(std::size_t i) {
  const Argument argument(*sources_[i]);
  given_[i] = !argument.omitted();
  if (!given_[i]) return S_OK;
  const Parameter& parameter = method_.slots[i];
  try {
    argument.load(values_[i], parameter.type);
    if (parameter.inOut && argument.isReference()) {
      returned_.reserve(method_.count);
      const bool empty = std::holds_alternative<std::monostate>(values_[i]);
      returned_.push_back({.parameter = i, .type = argument.type(), .wasEmpty = empty});
    }
    return S_OK;
  } catch (const RuntimeError& error) {
    if (error.number() == RuntimeError::typeMismatch) return failed(DISP_E_TYPEMISMATCH, i);
    if (error.number() == RuntimeError::overflow) return failed(DISP_E_OVERFLOW, i);
    throw;
  }
}

/// The caller's variables are never read a second time: one may stand for several parameters, and then holds
/// another one's result.
void HostCall::remember() {
  for (Returned& returned : returned_) {
    if (!returned.wasEmpty) returned.loaded = values_[returned.parameter];
  }
}

HRESULT HostCall::run(Serial& serial, VARIANT* result) {
  OwnedVariant returned(resultOf(serial));
  const HRESULT outcome = giveBack();
  if (SUCCEEDED(outcome) && result != nullptr) *result = returned.release();
  return outcome;
}

VARIANT HostCall::resultOf(Serial& serial) {
  try {
    return variantOf(method_.call(serial, values_.data()));
  } catch (...) {
    // What the method changed before it failed belongs to the caller all the same.
    (void)giveBack();
    throw;
  }
}

HRESULT HostCall::giveBack() noexcept {
  HRESULT outcome = S_OK;
  std::array<const void*, mostParameters> written{};
  for (const Returned& returned : returned_) {
    const std::size_t i = returned.parameter;
    const Argument argument(*sources_[i]);
    const bool overwritten = std::find(written.begin(), written.end(), argument.variable()) != written.end();
    if (returned.loaded == values_[i] && !overwritten) continue;
    written[i] = argument.variable();
    const HRESULT result = argument.assign(values_[i], returned.type);
    if (FAILED(result)) outcome = failed(result, i);
  }
  return outcome;
}

HRESULT HostCall::failed(HRESULT code, std::size_t parameter) {
  if (sources_[parameter] != nullptr) fault_ = static_cast<UINT>(sources_[parameter] - passed_.rgvarg);
  return code;
}

}  // namespace velk::com
