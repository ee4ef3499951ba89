#pragma once

#include <memory>
#include <string>

#include "cli/velk/doctor/link_steps.h"

namespace velk::cli {

/// Looks at a serial device without opening it as a link: is it there, what is known of it, may this user
/// have it, who has it. False when one of these is wrong.
bool addPortSteps(LinkSteps& steps, const std::string& device);

/// How long an adapter holds back what has come. Made before the link opens, asked while it is open.
class AdapterLatency {
 public:
  virtual ~AdapterLatency() = default;
  [[nodiscard]] virtual Step whileOpen() const = 0;
};

std::unique_ptr<AdapterLatency> watchLatency(const std::string& device);

}  // namespace velk::cli
