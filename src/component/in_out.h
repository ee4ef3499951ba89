#pragma once

#include <concepts>
#include <utility>

namespace velk {

/// A by-reference argument that may be left out. It binds to the caller's variable, which then receives what
/// the method writes back; a plain value, such as the default, is kept in the argument itself and what is
/// written back is dropped.
template <class T>
class InOut {
 public:
  // NOLINTBEGIN(google-explicit-constructor, bugprone-forwarding-reference-overload): arguments convert
  InOut(T& variable) : target_(variable) {}

  template <class U>
  requires(std::convertible_to<U, T> && !std::same_as<U, T&> && !std::same_as<std::remove_cvref_t<U>, InOut>)
      InOut(U&& value)
      : own_(static_cast<T>(std::forward<U>(value))), target_(own_) {}
  // NOLINTEND(google-explicit-constructor, bugprone-forwarding-reference-overload)

  InOut(const InOut&) = delete;
  InOut& operator=(const InOut&) = delete;
  ~InOut() = default;

  T& operator*() { return target_; }
  T* operator->() { return &target_; }

 private:
  T own_{};
  T& target_;
};

}  // namespace velk
