#pragma once

#include <string>
#include <vector>

/// The lines of earlier sessions, in velk/history of the user's state folder. What goes wrong there is no reason to
/// disturb anybody.
namespace velk::cli {

/// The last of them, at most so many, the oldest first. Shortens a file that has grown to twice as many.
std::vector<std::string> readHistory(std::size_t atMost);

/// Adds a line at once, so that sessions side by side keep all of theirs. The file is for its owner alone.
void appendHistory(const std::string& line);

}  // namespace velk::cli
