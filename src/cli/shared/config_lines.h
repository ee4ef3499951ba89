#pragma once

#include <string>
#include <string_view>

namespace velk::cli {

/// The text of a configuration file, in which each line is "[section]" or "name = value" (in quotes, or one word),
/// and may end with a comment behind "#": without these, blanks around and what an editor puts in front of all.
/// Throws std::invalid_argument with the number of the line and a sentence, "3: there is no ] at its end", for
/// whatever the library's reader would take in silence for something else: a line of another form, and a section
/// or a name that stands there twice.
std::string checkedConfiguration(std::string_view text);

}  // namespace velk::cli
