#include "cli/velk/shell/line_editor.h"

#include <windows.h>

#include <array>
#include <iostream>

#include "cli/shared/interrupts.h"
#include "cli/shared/windows/wide.h"

namespace velk::cli {

class LineEditor::System {
 public:
  explicit System(std::string prompt) : prompt_(std::move(prompt)) {}

  std::optional<std::string> read() {
    constexpr wchar_t ctrlZ = 26;
    std::cerr << prompt_ << std::flush;
    std::wstring line;
    do {
      std::array<wchar_t, 1024> text{};
      DWORD length = 0;
      SetLastError(ERROR_SUCCESS);
      const BOOL isRead = ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), text.data(),
                                       static_cast<DWORD>(text.size()), &length, nullptr);
      if (GetLastError() == ERROR_OPERATION_ABORTED) return afterBreak();
      if (isRead == 0 || length == 0) return std::nullopt;
      line.append(text.data(), length);
    } while (line.back() != L'\n');
    if (line.front() == ctrlZ) return std::nullopt;
    return utf8Of(std::wstring_view(line).substr(0, line.find_first_of(L"\r\n")));
  }

 private:
  /// Ctrl-C is noted on another thread, maybe later than the wait ends.
  static std::string afterBreak() {
    constexpr int longest = 1000;  // ms
    for (int waited = 0; waited < longest && !isInterrupted(); ++waited) Sleep(1);
    std::cerr << '\n';
    return {};
  }

  std::string prompt_;
};

LineEditor::LineEditor(const std::string& prompt, Complete /*complete*/)
    : system_(std::make_unique<System>(prompt)) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read() {
  return system_->read();
}

void LineEditor::keep(const std::string& /*line*/) {}

}  // namespace velk::cli
