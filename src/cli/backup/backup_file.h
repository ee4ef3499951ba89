#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/backup/memory_map.h"
#include "cli/things/module.h"
#include "simulator/store.h"

namespace velk::cli {

/// Lines of the controller's memory, by the spots of their first bytes. A line that is not there is zero.
using Lines = std::map<Spot, Bytes>;

/// What a backup file holds: docs/backup-format.md.
struct Backup {
  std::string begun;  ///< local time, "2024-03-04 10:20:30"
  std::string link;   ///< where from, without the password
  bool complete = false;
  Lines lines;
  std::vector<Module> modules;
};

/// Throws `Failure` with `badFile`.
Backup loadBackup(const std::string& path);

/// Writes beside the file and renames, so that a file is never half-written. Throws `Failure` with `badFile`.
void saveBackup(const std::string& path, const Backup& backup);

/// Writes a text likewise.
void saveText(const std::string& path, const std::string& text);

/// Where an unfinished backup waits to be continued.
std::string partOf(const std::string& path);

/// The byte at a spot.
Byte byteOf(const Lines& lines, Spot spot);

/// The lines as a controller's memory.
simulator::Store storeOf(const Lines& lines);

}  // namespace velk::cli
