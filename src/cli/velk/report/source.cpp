#include "cli/velk/report/source.h"

#include "cli/shared/files.h"
#include "cli/velk/connection/link_text.h"

namespace velk::cli {
namespace {

std::string nameOfFile(const std::string& path) {
  constexpr std::string_view ending = ".json";
  std::string name = path.substr(path.find_last_of("/\\") + 1);
  if (name.ends_with(ending) && name != ending) name.resize(name.size() - ending.size());
  return name;
}

std::string titleOf(const LinkChoice& choice, const LinkOptions& link) {
  if (!choice.house().empty()) return choice.house();
  return link.simulate ? "The simulated house" : nameOf(link);
}

}  // namespace

Source sourceOf(const std::string& path, const Backup& backup) {
  std::string from = path;
  if (!backup.begun.empty()) from += ", saved " + backup.begun;
  if (!backup.link.empty()) from += " from " + backup.link;
  return {nameOfFile(path), std::move(from)};
}

Source sourceOf(const LinkChoice& choice, const LinkOptions& link) {
  // What is wrong with the file was told when it was opened as a link.
  if (!link.backup.empty()) return sourceOf(link.backup, parseBackup(readFile(link.backup)));
  return {titleOf(choice, link), nameOf(link) + ", read " + now()};
}

}  // namespace velk::cli
