/// Backup files: any text is read or refused with a sentence, what was read is written and read back the
/// same, and a file of which a line was changed never passes for an intact one.

#include <stdexcept>
#include <string>

#include "cli/house/backup_file.h"
#include "support/target.h"

namespace velk::fuzz {
namespace {

std::string original() {
  cli::Backup backup{.begun = "2024-03-04 10:20:30", .link = "simulate:", .lines = {}, .modules = {}};
  for (const Byte page : {Byte{3}, Byte{5}, Byte{99}}) {
    for (const Byte offset : {Byte{0}, Byte{16}, Byte{240}}) {
      backup.lines[{link::Area::external, page, offset}] = Bytes(cli::lineSize, character(page + offset));
    }
  }
  backup.lines[{link::Area::highBlock, 10, 0}] = "Radio           ";
  backup.modules.push_back(
      {.serial = "090500", .model = "M", .cpuType = 48, .firmware = "1.0", .record = "\1\2"});
  return textOf(backup);
}

/// A whole one can be served, and saved again: of format 1 it may lack lines, and has them then.
void serve(const cli::Backup& backup) {
  const simulator::Store store = cli::storeOf(backup.lines);
  const cli::Backup saved = cli::parseBackup(textOf(cli::Backup{
      .begun = {}, .link = {}, .complete = true, .lines = cli::linesOf(store), .modules = backup.modules}));
  require(saved.condition == cli::Condition::intact, "what is saved is intact");
  require(cli::linesOf(cli::storeOf(saved.lines)) == saved.lines, "what is saved is served the same");
}

void read(const std::string& text) {
  try {
    const cli::Backup backup = cli::parseBackup(text);
    if (backup.complete) return serve(backup);
    const cli::Backup copy = cli::parseBackup(textOf(backup));
    require(copy.condition == cli::Condition::intact, "what is written is intact");
    require(copy.lines == backup.lines, "what is written reads back the same");
  } catch (const std::invalid_argument& error) {
    require(error.what()[0] != '\0', "a refusal says why");
  }
}

/// Puts a text in the place of a part of one line.
void edit(std::string_view recipe) {
  static const std::string whole = original();
  if (recipe.size() < 3) return;
  std::string text = whole;
  const auto at = (std::size_t{byteValue(recipe[0])} * 256 + byteValue(recipe[1])) % whole.size();
  const std::size_t restOfLine = text.find('\n', at) - at;
  text.replace(at, byteValue(recipe[2]) % (restOfLine + 2), recipe.substr(3));
  std::string plain = text;
  std::erase(plain, '\r');
  bool intact = false;
  try {
    intact = cli::parseBackup(text).condition == cli::Condition::intact;
  } catch (const std::invalid_argument&) {  // NOLINT(bugprone-empty-catch): told
  }
  require(!intact || plain == whole, "a changed file does not pass for an intact one");
}

}  // namespace

void run(Input input) {
  const std::string text = input.rest();
  read(text);
  edit(text);
}

}  // namespace velk::fuzz
