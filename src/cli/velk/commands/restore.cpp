#include <algorithm>
#include <cstdio>
#include <iterator>

#include "cli/house/check.h"
#include "cli/house/event_list.h"
#include "cli/shared/amount.h"
#include "cli/shared/progress.h"
#include "cli/shared/terminal.h"
#include "cli/velk/backup/controller_backup.h"
#include "cli/velk/backup/describe.h"
#include "cli/velk/backup/identity.h"
#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/backup/restorable_module.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/commands/consent.h"
#include "cli/velk/connection/expect_done.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::cli {
namespace {

struct RestoreOptions : LinkedOptions {
  std::string file;
  std::vector<std::string> only;
  Consent consent;
  bool edited = false;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("FILE", file, "A backup").required();
    line.option("--only", only, "Restore these sections alone")
        .delimiter(',')
        .typeName("SECTION,...")
        .oneValueEach();
    consent.declare(line);
    line.flag("--edited", edited, "Take a backup that was changed by hand, or is of format 1");
  }
};

/// Neighbouring bytes of one line, which one transaction writes.
struct Patch {
  Address at;
  Bytes bytes;
};

std::vector<Patch> patchesOf(const std::vector<Address>& addresses, const Lines& lines) {
  std::vector<Patch> patches;
  for (const Address at : addresses) {
    const char value = character(byteOf(lines, at));
    if (!patches.empty()) {
      Patch& last = patches.back();
      const bool follows = last.at.area == at.area && last.at.page == at.page &&
                           last.at.offset + last.bytes.size() == at.offset && at.offset % lineSize != 0;
      if (follows) {
        last.bytes += value;
        continue;
      }
    }
    patches.push_back({at, Bytes(1, value)});
  }
  return patches;
}

/// What has to be written of a thing that differs: the bytes that do, but a list of events up to its end.
/// What lies behind the end of the shorter one that the controller has was not compared, and is part of the
/// list then.
std::vector<Address> bytesToWrite(const Difference& difference, const Lines& lines) {
  constexpr int pageSize = 256;
  if (difference.addresses.empty()) return {};
  Address at = difference.addresses.front();
  if (const auto thing = memory::thingAt(at); !thing || thing->kind != ThingKind::events)
    return difference.addresses;
  std::vector<Address> addresses;
  Bytes list;
  for (int offset = 0; offset < pageSize && !endOfEvents(list); ++offset) {
    at.offset = static_cast<Byte>(offset);
    addresses.push_back(at);
    list += character(byteOf(lines, at));
  }
  return addresses;
}

/// Writes one thing and reads every byte back.
void restoreOne(Serial& serial, const Difference& difference, const Backup& backup) {
  for (const Patch& patch : patchesOf(bytesToWrite(difference, backup.lines), backup.lines)) {
    writeBytes(serial, patch.at, patch.bytes);
    if (readBytes(serial, patch.at, patch.bytes.size()) != patch.bytes) {
      expectDone(readsBackDifferent, "reading back " + difference.title);
    }
  }
  for (const Module& module : backup.modules) {
    if (difference.title == titleOf(module)) restoreModule(serial, module);
  }
}

/// How far a restoration came.
struct Account {
  std::size_t done = 0;
  std::string failure;  ///< empty when all was written
  ExitStatus status = success;
};

Account restoreAll(Serial& serial, const std::vector<Difference>& differences, const Backup& backup) {
  Account account;
  Progress progress("restore");
  const auto stop = [&](const std::exception& error, ExitStatus status) {
    account.failure = error.what();
    account.status = status;
    return account;
  };
  try {
    for (const Difference& difference : differences) {
      restoreOne(serial, difference, backup);
      progress.show(++account.done, differences.size());
    }
  } catch (const Failure& failure) {
    return stop(failure, failure.status);
  } catch (const RuntimeError& error) {
    return stop(error, runtimeError);
  }
  return account;
}

std::vector<std::string> titles(const std::vector<Difference>& differences, std::size_t first,
                                std::size_t end) {
  std::vector<std::string> list;
  for (std::size_t i = first; i < end; ++i) list.push_back(differences[i].title);
  return list;
}

std::string firstWord(const std::string& title) {
  return title.substr(0, title.find(' '));
}

/// Titles in a row; very many of one kind by the first and last of them.
std::string listOf(const std::vector<std::string>& list) {
  constexpr std::ptrdiff_t many = 24;
  if (list.empty()) return " nothing";
  std::string text;
  for (auto first = list.begin(); first != list.end();) {
    const auto end = std::find_if(
        first, list.end(), [&](const std::string& title) { return firstWord(title) != firstWord(*first); });
    text += (text.empty() ? " " : ", ") + *first;
    if (end - first > many) {
      text += " to " + *(end - 1) + " (" + std::to_string(end - first) + ")";
      first = end;
    } else {
      ++first;
    }
  }
  return text;
}

void printAccount(const Account& account, const std::vector<Difference>& differences) {
  const std::size_t all = differences.size();
  if (all == 0) {
    std::cerr << "velk: nothing to write\n";
    return;
  }
  if (account.failure.empty()) {
    std::cerr << "velk: " << amount(account.done, "thing") << " written and read back\n";
    return;
  }
  std::cerr << "velk: stopped: " << account.failure
            << "\nwritten and read back:" << listOf(titles(differences, 0, account.done))
            << "\npossibly in part:" << listOf(titles(differences, account.done, account.done + 1))
            << "\nnot written:" << listOf(titles(differences, account.done + 1, all))
            << "\nThe same command goes on from here.\n";
}

/// `differences` are all that were found, `writable` those that the account tells of.
Json jsonOf(const Account& account, const std::vector<Difference>& differences,
            const std::vector<Difference>& writable, const LeftOut& left) {
  std::vector<std::string> leftTitles;
  for (const auto& [title, reason] : left) leftTitles.push_back(title);
  return {{"differences", jsonOf(differences)},
          {"written", titles(writable, 0, account.done)},
          {"not_written", titles(writable, account.done, writable.size())},
          {"left_out", leftTitles},
          {"failure", account.failure.empty() ? Json() : Json(account.failure)}};
}

/// Whether to go on with a backup that is not as velk wrote it: what a person typed there is a person's to
/// confirm, and a line that format 1 does not have would be written as zeros.
bool isTrusted(const RestoreOptions& options, const Backup& backup) {
  if (backup.condition == Condition::intact) return true;
  try {
    if (isSelected(parseSections(options.only), sectionOf(ThingKind::output))) checkModes(backup.lines);
  } catch (const std::invalid_argument& error) {
    throw Failure(badFile, options.file + ": " + error.what());
  }
  const bool isReadOnly = options.consent.dryRun && backup.condition == Condition::edited;
  if (options.edited || isReadOnly) return true;
  if (backup.condition == Condition::unverified || options.consent.yes || !inputIsTerminal()) {
    throw Failure(wrongUsage, options.file + ": only --edited restores such a file");
  }
  return agreed("Go on with a file that was changed?");
}

/// A module's model and firmware are told, but cannot be written.
bool isWritable(const Difference& difference) {
  const auto& changes = difference.changes;
  return !difference.addresses.empty() ||
         std::any_of(changes.begin(), changes.end(),
                     [](const ChangedDetail& c) { return c.name == "record"; });
}

int carryOutRestore(const RestoreOptions& options) {
  const LinkOptions link = options.link.required();
  const Sections sections = parseSections(options.only);
  const Backup backup = loadBackup(options.file);
  options.consent.expectSomebody();
  if (!isTrusted(options, backup)) return badResult;
  const auto connection = open(link);
  watchInterrupts();
  Lines here = readIdentity(connection->serial(), backup.lines);
  if (!options.consent.covers(options.file, strangenessOf(backup.lines, here), "restores it"))
    return badResult;
  const Backup now = readLike(connection->serial(), backup, sections, std::move(here));
  const auto differences = compare(now, backup, sections);
  const LeftOut left = leftOut(backup, now);
  for (const auto& [title, reason] : left)
    std::cerr << "velk: " << title << " is left out: " << reason << '\n';
  if (!options.json) {
    for (const Difference& difference : differences) std::cout << textOf(difference) << '\n';
  }
  std::vector<Difference> writable;
  std::copy_if(differences.begin(), differences.end(), std::back_inserter(writable),
               [&](const Difference& d) { return isWritable(d) && !left.contains(d.title); });
  Account account;
  const bool writes = !options.consent.dryRun && !writable.empty();
  if (writes && !options.consent.covers()) return badResult;
  if (writes) account = restoreAll(connection->serial(), writable, backup);
  if (options.json) std::cout << jsonOf(account, differences, writable, left) << '\n';
  if (!options.consent.dryRun || writable.empty()) printAccount(account, writable);
  return account.status;
}

}  // namespace

void addRestore(const CommandLine& velk, Job& job) {
  addCommand<RestoreOptions>(
      velk, job, "restore", "Write a backup to the controller, where it differs",
      "  velk restore house.json --dry-run\n"
      "  velk restore --tcp 192.168.1.20:8445 house.json --only outputs,links\n"
      "  velk restore house.json --yes\n"
      "\nA controller whose outputs have other names looks like another house, which is asked about; with\n"
      "--yes only --other-house goes on.\n"
      "\nSections: settings outputs links texts presets switch-times simulation infrared modules.\n"
      "The clock is not restored; see \"velk clock set\". What differs is shown and, after a question,\n"
      "that alone is written and every byte read back. Modules whose record cannot be written as it was read "
      "are left out and told\n"
      "first. Called again after a failure or an interruption it goes on from there.\n",
      carryOutRestore);
}

}  // namespace velk::cli
