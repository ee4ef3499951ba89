#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/windows/handle.h"

namespace velk::cli {

/// What a wait does when the program is asked to end.
enum class WhenInterrupted : std::uint8_t { stop, goOn };

/// A program that this one has started, without a window and with nothing to read, and what it prints. It
/// ends with this object, and with this program however that ends.
class Child {
 public:
  /// Throws std::runtime_error when it does not start. The arguments hold no quotation marks.
  Child(const std::filesystem::path& program, const std::vector<std::wstring>& arguments);
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Waits until it has ended, has printed enough, or the time has passed; false for the last of these.
  bool wait(std::chrono::seconds longest, WhenInterrupted interrupts,
            const std::function<bool(const std::string&)>& isEnough = {});

  /// What it has printed until then, as UTF-8.
  [[nodiscard]] std::string output() const;

  /// With which it has ended.
  [[nodiscard]] DWORD exitCode() const;

 private:
  void readWaiting();

  platform::Handle process_;
  platform::Handle reading_;
  std::string output_;
};

}  // namespace velk::cli
