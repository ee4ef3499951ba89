// Prints docs/reference.md: every method and property, from the method table and the comments of the headers
// that declare them. Fails when one of them has no comment there, or its comment names an unknown argument.
// Usage: generate_reference SETTINGS_HEADER SERIAL_HEADER

#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "component/identity.h"
#include "component/method_table.h"
#include "printers/docstrings.h"
#include "printers/type_names.h"

namespace {

using velk::Kind;
using velk::Method;
using velk::Parameter;
using velk::Type;
using velk::docstrings::ClassComments;
using velk::docstrings::Docstring;
using velk::docstrings::Remark;
using velk::docstrings::Section;

constexpr auto table = velk::methodTable<velk::Described>();

constexpr std::string_view introduction =
    R"(Types: Byte 0 to 255, Integer -32768 to 32767, String one byte a character, Boolean, Variant. An argument
marked *in/out* receives a value when the host passes a variable. An argument with a default may be left
out. A text stands for the number that it is ("59", "2.5", "&H1F"); the fraction follows a point on every
system, so that a decimal comma ("2,5") is error 13. An array of bytes is taken wherever a String is, and a
variable that held one gets one back. A variable that is passed for several arguments keeps the last result.
What each result byte means, and what to do about it: [results.md](results.md).
)";

std::string nameOf(Type type) {
  return std::string(velk::namesOf(type).host);
}

std::string fallbackOf(const Parameter& parameter) {
  if (!parameter.optional) return "";
  if (parameter.type == Type::text) return "\"\"";
  if (parameter.type == Type::boolean) return parameter.fallback != 0 ? "True" : "False";
  return std::to_string(parameter.fallback);
}

std::string signature(const Method& method) {
  std::string list;
  for (const Parameter& parameter : method.parameters()) {
    const std::string separator = list.empty() ? "" : ", ";
    list += separator + (parameter.optional ? "[" : "") + std::string(parameter.name) +
            (parameter.optional ? "]" : "");
  }
  return std::string(method.name) + "(" + list + ") As " + nameOf(method.result);
}

std::string remarkOn(std::string_view parameter, const Docstring& docstring) {
  for (const Remark& remark : docstring.remarks) {
    if (remark.parameter == parameter) return remark.text;
  }
  return "";
}

void checkNames(const Method& method, const Docstring& docstring) {
  const auto known = method.parameters();
  for (const Remark& remark : docstring.remarks) {
    if (std::none_of(known.begin(), known.end(),
                     [&](const Parameter& parameter) { return parameter.name == remark.parameter; })) {
      throw std::runtime_error(std::string(method.name) + " has no argument " + remark.parameter);
    }
  }
}

void printArguments(const Method& method, const Docstring& docstring) {
  if (method.count == 0) return;
  std::cout << "\n| argument | type | default | |\n|---|---|---|---|\n";
  for (const Parameter& parameter : method.parameters()) {
    std::cout << "| `" << parameter.name << "` | " << nameOf(parameter.type)
              << (parameter.inOut ? ", *in/out*" : "") << " | " << fallbackOf(parameter) << " | "
              << remarkOn(parameter.name, docstring) << " |\n";
  }
}

void print(const Method& method, const Docstring& docstring) {
  checkNames(method, docstring);
  std::cout << "\n### " << method.name << "\n\n";
  if (method.kind == Kind::property) {
    std::cout << "`" << method.name << " As " << nameOf(method.result) << "`, read and write.\n\n";
  } else {
    std::cout << "`" << signature(method) << "`\n\n";
  }
  std::cout << docstring.text << "\n";
  printArguments(method, docstring);
  if (!docstring.result.empty()) std::cout << "\nResult: " << docstring.result << "\n";
}

/// Prints the sections of a header that have rows in the table, and returns how many rows that were.
std::size_t print(const ClassComments& comments, std::string_view untitled) {
  std::size_t printed = 0;
  for (const Section& section : comments.sections) {
    bool first = true;
    for (const std::string& name : section.names) {
      const auto* const row =
          std::find_if(table.begin(), table.end(), [&](const Method& method) { return method.name == name; });
      if (row == table.end()) continue;
      if (first) std::cout << "\n## " << (section.title.empty() ? untitled : section.title) << "\n";
      first = false;
      print(*row, comments.members.at(name));
      ++printed;
    }
  }
  return printed;
}

void printReference(const ClassComments& settings, const ClassComments& serial) {
  std::cout << "<!-- Printed from the method table and the comments in serial.h; see CONTRIBUTING.md. -->\n"
            << "# Reference of `" << velk::identity::progId << "`\n\n"
            << serial.classText << "\n\n"
            << introduction;
  std::size_t printed = print(settings, "Properties");
  printed += print(serial, "Methods");
  if (printed != table.size()) {
    throw std::runtime_error(std::to_string(table.size() - printed) + " methods have no comment");
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 3) throw std::runtime_error("usage: generate_reference SETTINGS_HEADER SERIAL_HEADER");
    printReference(velk::docstrings::read(argv[1]), velk::docstrings::read(argv[2]));
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "generate_reference: " << error.what() << '\n';
    return 1;
  }
}
