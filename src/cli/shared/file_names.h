#pragma once

#include <filesystem>
#include <string>

/// Names of files are UTF-8 on every system, in command lines, texts and files.
namespace velk::cli {

inline std::filesystem::path pathOf(const std::string& name) {
  return {std::u8string(name.begin(), name.end())};
}

inline std::string textOf(const std::filesystem::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

}  // namespace velk::cli
