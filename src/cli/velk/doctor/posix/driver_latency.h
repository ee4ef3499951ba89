#pragma once

#include <filesystem>
#include <optional>

#include "cli/velk/doctor/port_steps.h"
#include "platform/posix/fd.h"

namespace velk::cli {

/// By the low-latency flag of the driver and, where the driver tells it, its timer in milliseconds.
class DriverLatency final : public AdapterLatency {
 public:
  /// @param root that of the system's files, which is "/"
  DriverLatency(const std::string& device, const std::filesystem::path& root);
  [[nodiscard]] Step whileOpen() const override;

 private:
  platform::Fd device_;  ///< opened before the link, which keeps others out
  std::optional<bool> before_;
  std::filesystem::path timer_;
};

}  // namespace velk::cli
