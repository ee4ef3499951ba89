#include "cli/velk/commands/change.h"

#include "cli/shared/interrupts.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/shared_link.h"
#include "values/result.h"

namespace velk::cli {
namespace {

Shown writeAndReadBack(const Change& change) {
  const auto stands = [&] { return change.read().details == change.after.details; };
  expectDone(retry().write(change.write, stands), "writing " + change.title);
  Shown now = change.read();
  if (now.details != change.after.details) expectDone(readsBackDifferent, "reading back " + change.title);
  return now;
}

void printJson(const Shown& thing, const Changes& changes, bool isWritten) {
  Json json = thing.json;
  json["changes"] = jsonOf(changes);
  json["written"] = isWritten;
  std::cout << json << '\n';
}

}  // namespace

int carryOut(const ChangeOptions& options, const Change& change) {
  const Changes changes = changesOf(change.before.details, change.after.details);
  const bool writes = !options.dryRun && !changes.empty();
  // What is shown stands there before the first byte is written, also in a pipe.
  if (!options.json && !changes.empty()) std::cout << textOf(change.title, changes) << '\n' << std::flush;
  Shown now = change.after;
  if (writes) {
    // A method that is broken off would leave half of what it writes.
    watchInterrupts();
    now = writeAndReadBack(change);
    unwatchInterrupts();
  }
  if (options.json) printJson(now, changes, writes);
  if (writes) std::cerr << "velk: written and read back\n";
  if (changes.empty()) std::cerr << "velk: nothing to write: " << change.title << " is so already\n";
  // Where many share a link it is for who carries them out: this one is done.
  if (SharedLink::current() == nullptr) checkInterrupt();
  return success;
}

}  // namespace velk::cli
