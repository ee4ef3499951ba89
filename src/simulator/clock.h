#pragma once

#include <chrono>
#include <functional>

#include "simulator/controller.h"

namespace velk::simulator {

/// The running clock at 0xFFF9 to 0xFFFF of the external memory: seconds, minutes, hours, weekday (1 to 7),
/// day, month and year in packed BCD. It stands still while a hold byte, 0xFFF7 or 0xFFF8, is not 0, and goes
/// on from whatever is written. A date that does not exist stays as it is while the time runs.
class Clock final : public Device {
 public:
  /// A clock that never goes back, from any starting point.
  using Time = std::function<std::chrono::nanoseconds()>;

  explicit Clock(Time time) : time_(std::move(time)), last_(time_()) {}

  [[nodiscard]] bool covers(Address byte) const override;
  void beforeRead(Store& store, const Transfer& transfer) override;
  void beforeWrite(Store& store, const Transfer& transfer) override;
  void refresh(Store& store) override { catchUp(store); }

 private:
  void catchUp(Store& store);

  Time time_;
  std::chrono::nanoseconds last_;  ///< when the second in the memory began
};

}  // namespace velk::simulator
