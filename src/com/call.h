#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "com/argument.h"
#include "component/methods.h"

namespace velk::com {

/// The argument slots of one call. Only as many as it has are made: a slot costs more than a simple call.
class Slots {
 public:
  explicit Slots(std::size_t count) : count_(count) { std::uninitialized_value_construct_n(data(), count); }
  ~Slots() { std::destroy_n(data(), count_); }
  Slots(const Slots&) = delete;
  Slots& operator=(const Slots&) = delete;

  [[nodiscard]] Value* data() { return reinterpret_cast<Value*>(memory_.data()); }
  Value& operator[](std::size_t index) { return data()[index]; }

 private:
  alignas(Value) std::array<std::byte, mostParameters * sizeof(Value)> memory_;
  std::size_t count_;
};

/// One call of a method through the dispatch interface: the arguments on their way to the method, and its
/// results on their way back. A step that fails returns an automation error code (DISP_E_...); run-time
/// errors are raised.
class HostCall {
 public:
  HostCall(const Method& method, const DISPPARAMS& passed)
      : method_(method), passed_(passed), values_(method.count) {}

  /// Finds the argument for each parameter and brings it into the parameter's type.
  HRESULT take();

  /// Runs the method and gives back what it changed, also where it fails with a run-time error. `result`,
  /// where the host wants one, is written when all went well.
  HRESULT run(Serial& serial, VARIANT* result);

  /// The value of a parameter.
  [[nodiscard]] const Value& value(std::size_t parameter) { return values_[parameter]; }

  /// Tells a host that asks which argument, by its position in the host's list, is at fault.
  void reportFault(UINT* argument) const {
    if (fault_ && argument != nullptr) *argument = *fault_;
  }

 private:
  /// A parameter whose result goes back into a variable of the caller's, and what that held before the call.
  struct Returned {
    std::size_t parameter;
    VARTYPE type;
    bool wasEmpty;
    Value loaded;  ///< in the parameter's type; none for a variable that was empty
  };

  HRESULT place();
  HRESULT load();
  HRESULT load(std::size_t parameter);
  void remember();
  VARIANT resultOf(Serial& serial);

  /// Writes what the method has changed back into the caller's variables, in the order of the parameters:
  /// where one variable stands for several results and any of them has changed, the last one stays. A
  /// variable that was empty is written in any case; any other that the method left alone keeps its type.
  HRESULT giveBack() noexcept;
  HRESULT failed(HRESULT code, std::size_t parameter);

  const Method& method_;
  const DISPPARAMS& passed_;
  std::array<VARIANT*, mostParameters> sources_{};
  Slots values_;
  std::array<bool, mostParameters> given_{};
  std::vector<Returned> returned_;  ///< in the order of the parameters
  std::optional<UINT> fault_;
};

}  // namespace velk::com
