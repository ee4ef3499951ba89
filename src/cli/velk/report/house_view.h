#pragma once

#include <optional>
#include <vector>

#include "cli/house/saved_module.h"
#include "cli/velk/things/output_names.h"
#include "cli/velk/things/soft_link.h"
#include "cli/velk/things/week.h"
#include "component/serial.h"

namespace velk::cli {

/// A house that a report tells of. What several chapters need is read once.
class HouseView {
 public:
  /// Names are those of one house in all of a comparison, so that a new name changes the output alone.
  HouseView(Serial& serial, OutputNames& names, const std::vector<Module>& modules,
            Unreadable unreadable = Unreadable::isNoted)
      : serial_(serial), names_(names), modules_(modules), unreadable_(unreadable) {}

  [[nodiscard]] Serial& serial() { return serial_; }
  [[nodiscard]] OutputNames& names() { return names_; }
  [[nodiscard]] const std::vector<Module>& modules() const { return modules_; }
  [[nodiscard]] const Week& week();
  [[nodiscard]] const std::vector<SoftLink>& links();

 private:
  Serial& serial_;
  OutputNames& names_;
  const std::vector<Module>& modules_;
  Unreadable unreadable_;
  std::optional<Week> week_;
  std::optional<std::vector<SoftLink>> links_;
};

}  // namespace velk::cli
