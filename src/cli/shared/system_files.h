#pragma once

#include "cli/shared/files.h"

/// What files.h asks of the operating system. Everything throws std::system_error with its reason.
namespace velk::cli::system {

/// Keeps the places of standard streams that were closed from the start: a link that took the place of
/// standard output would be sent what is printed.
void holdStandardStreams();

/// Throws "file too large" when there are more bytes than that.
std::string read(const std::string& path, std::size_t atMost);

/// Opens a file to be written, behind all links. A file of a folder has to be writable, and so has its
/// folder; neither is changed.
Destination open(const std::string& path);

/// Opens a file of a folder and empties it, or makes it.
std::unique_ptr<Sink> create(const std::string& file);

/// Replaces a file, or makes it, when all its bytes are on the disk. It has the mode and owner of the file
/// before, else those of the file named `like`, if it is there.
void replace(const std::string& file, const std::string& like, std::string_view text);

/// Gives a file another name; false when that is taken.
bool rename(const std::string& from, const std::string& to);

void remove(const std::string& file) noexcept;

}  // namespace velk::cli::system
