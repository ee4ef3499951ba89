#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/house/lines.h"
#include "cli/house/saved_module.h"
#include "simulator/store.h"

namespace velk::cli {

/// Lines of the controller's memory, by the addresses of their first bytes. A line that is not there is zero.
using Lines = std::map<Address, Bytes>;

/// How far a backup's file can be believed.
enum class Condition : Byte {
  intact,      ///< as velk wrote it
  edited,      ///< its checksum is another: somebody or something changed it
  unverified,  ///< of format 1, which has no checksum, and where a line that is missing means zeros
};

/// A condition in words.
std::string textOf(Condition condition);

/// What a backup file holds: docs/backup-format.md.
struct Backup {
  std::string begun;  ///< local time, "2024-03-04 10:20:30"
  std::string link;   ///< where from, without the password
  bool complete = false;
  Lines lines;
  std::vector<Module> modules;
  Condition condition = Condition::intact;
};

/// The local time, as `begun` has it.
std::string now();

/// The text of a backup file, always of format 2.
std::string textOf(const Backup& backup);

/// Reads a backup file's text. Throws std::invalid_argument with a sentence when it is none, when lines are
/// missing, or when lines or bytes are there that belong to nothing.
Backup parseBackup(std::string text);

/// Reads a backup; tells on standard error when it is not intact. Throws `Failure` with `badFile`, for an
/// unfinished one too.
Backup loadBackup(const std::string& path, std::string_view program = "velk");

/// The byte at an address; 0 where its line is not there.
Byte byteOf(const Lines& lines, Address at);

/// The lines as a controller's memory, and the configuration of one as the lines of a complete backup.
simulator::Store storeOf(const Lines& lines);
Lines linesOf(const simulator::Store& store);

}  // namespace velk::cli
