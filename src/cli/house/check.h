#pragma once

#include "cli/house/backup_file.h"

/// What has to hold of the lines of a backup before they are believed. Each throws std::invalid_argument with
/// a sentence that names the first place where it does not.
namespace velk::cli {

/// Every byte belongs to something, or is zero, and no line is without such a byte.
void checkPlaces(const Lines& lines);

/// No line is missing, and of the lists of events there is nothing behind their ends.
void checkComplete(const Lines& lines);

/// Outputs have modes that exist.
void checkModes(const Lines& lines);

}  // namespace velk::cli
