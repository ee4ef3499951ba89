#pragma once

#include <optional>
#include <string>

/// Folders in a search path as Windows keeps it in the registry: one text, the folders between semicolons, a
/// folder with a semicolon of its own between quotation marks.
namespace velk::cli {

/// The longest that an environment variable of Windows can be, in characters.
constexpr std::size_t longestPath = 32766;

/// The path with a folder behind all others; none when the folder is there already, however it is written.
/// @param path none when there is no such variable
std::optional<std::wstring> pathWith(const std::optional<std::wstring>& path, const std::wstring& folder);

/// Takes back what `pathWith` has done: the text is exactly as it was before, and what has been changed around
/// the folder since then stays. None when the folder stands there alone, so that there was no variable.
std::optional<std::wstring> pathWithout(const std::wstring& path, const std::wstring& folder);

}  // namespace velk::cli
