#include "cli/velk/backup/series.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "cli/shared/file_names.h"
#include "cli/shared/files.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view pattern = "backup-########T######Z.json";  // "#" is a digit

bool isDated(std::string_view name) {
  return std::equal(name.begin(), name.end(), pattern.begin(), pattern.end(), [](char c, char expected) {
    return expected == '#' ? c >= '0' && c <= '9' : c == expected;
  });
}

std::string nameAt(std::time_t time) {
  std::array<char, 32> text{};
  return {text.data(),
          std::strftime(text.data(), text.size(), "backup-%Y%m%dT%H%M%SZ.json", std::gmtime(&time))};
}

/// Dated after today: when it was written a clock was wrong.
bool isInFuture(const std::string& file) {
  constexpr std::time_t day = 86400;
  return textOf(pathOf(file).filename()) > nameAt(std::time(nullptr) + day);
}

Lines withoutMailbox(Lines lines) {
  for (const Address at : sharedWithMailbox) {
    const auto line = lines.find({at.area, at.page, static_cast<Byte>(at.offset / lineSize * lineSize)});
    if (line != lines.end()) line->second[at.offset % lineSize] = '\0';
  }
  return lines;
}

std::string textOf(const std::vector<Module>& modules) {
  std::string text;
  for (const Module& module : modules) text += jsonOf(module).dump(1);
  return text;
}

}  // namespace

Series::Series(std::string folder) : folder_(std::move(folder)) {
  std::error_code error;
  if (fs::is_directory(pathOf(folder_), error)) return;
  if (error == std::errc::no_such_file_or_directory) {
    throw Failure(badFile, folder_ + ": there is no such folder; make it first");
  }
  throw failureOfFile(folder_, error ? error : std::make_error_code(std::errc::not_a_directory));
}

std::string Series::next() const {
  for (std::time_t time = std::time(nullptr);; ++time) {
    const fs::path path = pathOf(folder_) / nameAt(time);
    if (!fs::exists(path)) return textOf(path);
  }
}

std::string Series::part() const {
  return textOf(pathOf(folder_) / "backup.part");
}

std::string Series::last() const {
  const auto all = files();
  return all.empty() ? std::string() : all.back();
}

std::string Series::lastInFuture() const {
  const auto all = files();
  const auto end = std::find_if_not(all.begin(), all.end(), isInFuture);
  return end == all.begin() ? std::string() : *(end - 1);
}

std::vector<std::string> Series::prune(std::size_t keep, const std::string& written) const {
  std::vector<std::string> old = files();
  const std::size_t others = keep - std::erase(old, written);
  old.resize(old.size() - std::min(others, old.size()));
  for (const std::string& file : old) {
    std::error_code error;
    fs::remove(pathOf(file), error);
    if (error) throw failureOfFile(file, error);
  }
  return old;
}

std::vector<std::string> Series::files() const {
  std::error_code error;
  std::vector<std::string> found;
  for (auto entry = fs::directory_iterator(pathOf(folder_), error); !error && entry != fs::end(entry);
       entry.increment(error)) {
    if (isDated(textOf(entry->path().filename()))) found.push_back(textOf(entry->path()));
  }
  if (error) throw failureOfFile(folder_, error);
  std::sort(found.begin(), found.end());
  std::rotate(found.begin(), std::find_if(found.begin(), found.end(), isInFuture), found.end());
  return found;
}

bool isSameHouse(const Backup& a, const Backup& b) {
  return withoutMailbox(a.lines) == withoutMailbox(b.lines) && textOf(a.modules) == textOf(b.modules);
}

}  // namespace velk::cli
