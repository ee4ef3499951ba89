#include "cli/path/search_path.h"

#include <algorithm>
#include <vector>

namespace velk::cli {
namespace {

/// A folder of a path: where its text begins and ends, without the semicolons.
struct Entry {
  std::size_t begin;
  std::size_t end;
};

std::vector<Entry> entriesOf(const std::wstring& path) {
  // A quotation mark without its other half would hold all that follows.
  const bool paired = std::count(path.begin(), path.end(), L'"') % 2 == 0;
  std::vector<Entry> entries;
  std::size_t begin = 0;
  bool quoted = false;
  for (std::size_t i = 0; i <= path.size(); ++i) {
    if (paired && i < path.size() && path[i] == L'"') quoted = !quoted;
    if (i < path.size() && (quoted || path[i] != L';')) continue;
    entries.push_back({begin, i});
    begin = i + 1;
  }
  return entries;
}

/// Without what does not count: quotation marks, a backslash at the end, the case of letters. Letters beyond
/// ASCII keep theirs, so that at worst a folder stands there twice.
std::wstring comparable(std::wstring folder) {
  std::erase(folder, L'"');
  if (folder.ends_with(L'\\')) folder.pop_back();
  std::transform(folder.begin(), folder.end(), folder.begin(), [](wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
  });
  return folder;
}

/// The last that names the folder, since ours is put behind all others.
std::optional<Entry> find(const std::wstring& path, const std::wstring& folder) {
  const std::vector<Entry> entries = entriesOf(path);
  const auto found = std::find_if(entries.rbegin(), entries.rend(), [&](const Entry& entry) {
    return comparable(path.substr(entry.begin, entry.end - entry.begin)) == comparable(folder);
  });
  return found == entries.rend() ? std::nullopt : std::optional(*found);
}

std::wstring written(const std::wstring& folder) {
  return folder.find(L';') == std::wstring::npos ? folder : L'"' + folder + L'"';
}

}  // namespace

std::optional<std::wstring> pathWith(const std::optional<std::wstring>& path, const std::wstring& folder) {
  if (!path) return written(folder);
  if (find(*path, folder)) return std::nullopt;
  // The semicolon goes where none is yet, and with the folder later on.
  const bool open = path->empty() || path->ends_with(L';');
  return *path + (open ? written(folder) + L';' : L';' + written(folder));
}

std::optional<std::wstring> pathWithout(const std::wstring& path, const std::wstring& folder) {
  const auto entry = find(path, folder);
  if (!entry) return path;
  if (entry->begin == 0 && entry->end == path.size()) return std::nullopt;
  const bool followed = entry->end < path.size();
  const std::size_t begin = followed ? entry->begin : entry->begin - 1;
  return path.substr(0, begin) + path.substr(followed ? entry->end + 1 : entry->end);
}

}  // namespace velk::cli
