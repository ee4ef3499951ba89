#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// Reads the documentation comments of a header. For tools of the build.
namespace velk::docstrings {

/// What a comment says about one argument.
struct Remark {
  std::string parameter;
  std::string text;
};

/// The comment of one declaration.
struct Docstring {
  std::string text;  ///< in front of the first tag, as one paragraph or several parted by empty lines
  std::vector<Remark> remarks;  ///< of each "@param"
  std::string result;           ///< behind "@return"
};

struct Section {
  std::string title;               ///< of the comment line "// --- title"; empty before the first
  std::vector<std::string> names;  ///< of what is declared there, in the header's order
};

struct ClassComments {
  std::string classText;  ///< in front of the class
  std::vector<Section> sections;
  std::map<std::string, Docstring> members;
};

/// Parts a comment at its tags.
Docstring parse(std::string_view comment);

/// Reads a header of one class. Throws std::runtime_error when the file cannot be read.
ClassComments read(const std::string& path);

}  // namespace velk::docstrings
