#pragma once

#include <functional>
#include <string>

#include "cli/velk/commands/command.h"
#include "cli/velk/things/details.h"

/// How a command changes a thing: it is shown as it is and as it will be, written, read back, and told.
namespace velk::cli {

/// A thing for people and for programs.
struct Shown {
  Details details;
  Json json;  ///< an object
};

template <class Thing>
Shown shownAs(const Thing& thing) {
  return {detailsOf(thing), jsonOf(thing)};
}

/// What a command makes of a thing.
struct Change {
  std::string title;  ///< "switch time 3"
  Shown before;
  Shown after;
  std::function<Byte()> write;  ///< by a method, whose result it returns; it may be carried out twice
  std::function<Shown()> read;  ///< what stands in the controller now: `after`, once it is written
};

/// Shows what changes and, unless nothing does or it is a dry run, writes it and reads it back. Prints the
/// thing as JSON when asked to, with "changes" and "written". Throws `Failure`. Returns the exit status.
int carryOut(const ChangeOptions& options, const Change& change);

}  // namespace velk::cli
