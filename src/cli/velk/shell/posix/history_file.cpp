#include "cli/velk/shell/posix/history_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "cli/shared/failure.h"
#include "cli/shared/files.h"
#include "cli/shared/native_text.h"
#include "cli/velk/connection/houses.h"
#include "platform/posix/fd.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

fs::path historyFile() {
  const fs::path folder = environment("XDG_STATE_HOME").value_or("");
  // A relative one counts as none.
  return (folder.is_absolute() ? folder : homeFolder() / ".local/state") / "velk/history";
}

}  // namespace

std::vector<std::string> readHistory(std::size_t atMost) {
  std::vector<std::string> lines;
  try {
    std::istringstream in(readFileIfThere(historyFile()).value_or(""));
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    const bool isLong = lines.size() >= 2 * atMost;
    if (lines.size() > atMost) lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(atMost));
    if (!isLong) return lines;
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    OutputFile(historyFile()).write(text);
  } catch (const Failure&) {
    // Then there are those that could be read.
  }
  return lines;
}

void appendHistory(const std::string& line) {
  constexpr mode_t forOwner = 0600;
  const fs::path path = historyFile();
  std::error_code error;
  if (fs::create_directories(path.parent_path(), error)) {
    fs::permissions(path.parent_path(), fs::perms::owner_all, error);
  }
  const platform::Fd file(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, forOwner));
  const std::string text = line + '\n';
  [[maybe_unused]] const auto mayFail = ::write(file.get(), text.data(), text.size());
}

}  // namespace velk::cli
