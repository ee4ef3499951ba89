#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/velk/connection/connection.h"

namespace velk::cli {

/// The link of a house by its name in the user's configuration file, where each section is a house:
///
///     [cottage]
///     link = "tcp://192.168.1.20:8445"
///     address = 2
///     password = "1234"
///
/// or `password-file`, whose first line is the password; a relative name starts where the configuration file
/// lies, "~/" in the home folder. Says on standard error when others may read a file with a password. Throws
/// std::invalid_argument with a sentence, which lists the houses when there is none of that name. A file
/// with a line that is wrong is refused, whichever house that is of.
LinkOptions houseNamed(const std::string& name);

/// Those that the file names, in its order. Throws as above.
std::vector<std::string> houseNames();

/// Where this system keeps the file, and the user's home.
std::filesystem::path configurationFile();
std::filesystem::path homeFolder();

/// Whether other users may read a file.
bool othersMayRead(const std::filesystem::path& file);

}  // namespace velk::cli
