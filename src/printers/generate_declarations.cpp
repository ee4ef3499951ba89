// Prints the declarations in bindings/ for programs that are bound early, from the method table and the
// comments of the headers: a template whose words between @ are replaced. Usage: generate_declarations
// TEMPLATE SETTINGS_HEADER SERIAL_HEADER RESULT_HEADER

#include <algorithm>
#include <cctype>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "component/identity.h"
#include "component/method_table.h"
#include "component/result_codes.h"
#include "parameters/modes.h"
#include "printers/docstrings.h"

namespace {

using velk::Kind;
using velk::Method;
using velk::Parameter;
using velk::Type;
using velk::docstrings::Docstring;

constexpr auto table = velk::methodTable<velk::Described>();

/// How a language writes what the table has.
struct Language {
  std::string_view extension;  ///< of the template
  std::map<Type, std::string_view> types;
  std::string_view constants;  ///< the indentation of enumerators
  std::string_view separator;  ///< behind one
  std::string_view comment;    ///< in front of a line of a comment
  std::string (*member)(const Language& language, const Method& method, const Docstring& docstring);
};

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

/// Stands for a blank where no line is to end.
constexpr std::string_view noBreak = "\x01";

/// A text as lines, the first behind one prefix, the others behind another.
std::string wrapped(const std::string& first, const std::string& next, const std::string& text) {
  constexpr std::size_t columns = 118;
  std::string lines;
  std::string line = first;
  bool fresh = true;
  std::istringstream words(text);
  for (std::string word; words >> word; fresh = false) {
    if (!fresh && line.size() + 1 + word.size() > columns) {
      lines += line + "\n";
      line = next;
      fresh = true;
    }
    line += (fresh ? "" : " ") + word;
  }
  return replaced(lines + line + "\n", noBreak, " ");
}

/// A text as lines of a comment.
std::string comment(const std::string& mark, const std::string& text) {
  return wrapped(mark + " ", mark + " ", text);
}

/// A declaration, whose further lines stand further in.
std::string statement(const std::string& indent, const std::string& text) {
  return wrapped(indent, indent + "    ", text);
}

/// Joins what `part` gives for each parameter.
std::string list(const Method& method, std::string_view separator,
                 const std::function<std::string(const Parameter&)>& part) {
  std::string text;
  for (const Parameter& parameter : method.parameters()) {
    text += (text.empty() ? "" : std::string(separator)) + replaced(part(parameter), " ", noBreak);
  }
  return text;
}

std::string fallbackOf(const Parameter& parameter) {
  if (parameter.type == Type::text) return R"("")";
  if (parameter.type == Type::boolean) return parameter.fallback != 0 ? "true" : "false";
  return std::to_string(parameter.fallback);
}

/// All that a comment says, as one text.
std::string proseOf(const Docstring& docstring) {
  std::string text = docstring.text;
  for (const auto& remark : docstring.remarks) text += " `" + remark.parameter + "`: " + remark.text;
  if (!docstring.result.empty()) text += " Returns " + docstring.result;
  return text;
}

// --- C#

std::string xml(std::string text) {
  for (const auto& [from, to] : {std::pair{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}}) {
    text = replaced(std::move(text), from, to);
  }
  static const std::regex code("`([^`]*)`");
  return std::regex_replace(text, code, "<c>$1</c>");
}

std::string csharpParameter(const Language& language, const Parameter& parameter) {
  const std::string type(language.types.at(parameter.type));
  std::string text;
  if (parameter.optional) {
    const bool needsType = parameter.type == Type::byte || parameter.type == Type::integer;
    text = "[Optional, DefaultParameterValue(" + (needsType ? "(" + type + ")" : "") + fallbackOf(parameter) +
           ")] ";
  }
  return text + (parameter.inOut ? "ref " : "") + type + " " + std::string(parameter.name);
}

std::string csharpMember(const Language& language, const Method& method, const Docstring& docstring) {
  const std::string indent(8, ' ');
  const std::string mark = indent + "///";
  std::string text = comment(mark, "<summary>" + xml(docstring.text) + "</summary>");
  for (const auto& remark : docstring.remarks) {
    text += comment(mark, "<param name=\"" + remark.parameter + "\">" + xml(remark.text) + "</param>");
  }
  if (!docstring.result.empty()) text += comment(mark, "<returns>" + xml(docstring.result) + "</returns>");
  const std::string id = "[DispId(" + std::to_string(method.id) + ")]";
  const std::string type(language.types.at(method.result));
  const std::string head = type + " " + std::string(method.name);
  if (method.kind == Kind::property) return text + indent + head + " { " + id + " get; " + id + " set; }\n\n";
  const std::string parameters =
      list(method, ", ", [&](const Parameter& parameter) { return csharpParameter(language, parameter); });
  return text + indent + id + "\n" + statement(indent, head + "(" + parameters + ");") + "\n";
}

// --- Pascal

std::string pascalMember(const Language& language, const Method& method, const Docstring& docstring) {
  std::string prose = proseOf(docstring);
  const std::string fallbacks = list(method, "", [](const Parameter& parameter) -> std::string {
    if (!parameter.optional) return "";
    const std::string value = parameter.type == Type::text ? "''" : fallbackOf(parameter);
    return "; " + std::string(parameter.name) + " " + value;
  });
  if (!fallbacks.empty()) prose += " Defaults elsewhere:" + fallbacks.substr(1) + ".";
  const std::string indent(4, ' ');
  const std::string name(method.name);
  const std::string type(language.types.at(method.result));
  const std::string id = "dispid " + std::to_string(method.id) + ";";
  const std::string text = comment(indent + "//", replaced(prose, "`", ""));
  if (method.kind == Kind::property)
    return text + indent + "property " + name + ": " + type + " " + id + "\n\n";
  const std::string arguments = list(method, "; ", [&](const Parameter& parameter) {
    return (parameter.inOut ? "var " : "") + std::string(parameter.name) + ": " +
           std::string(language.types.at(parameter.type));
  });
  const std::string head = "function " + name + (arguments.empty() ? "" : "(" + arguments + ")");
  return text + statement(indent, head + ": " + type + "; " + id) + "\n";
}

// --- C++

std::string cppType(const Language& language, const Parameter& parameter) {
  const std::string type(language.types.at(parameter.type));
  if (parameter.inOut) return type + (parameter.optional ? "*" : "&");
  const bool byValue = parameter.type != Type::text && parameter.type != Type::variant;
  return byValue ? type : "const " + type + "&";
}

std::string cppMember(const Language& language, const Method& method, const Docstring& docstring) {
  const std::string name(method.name);
  const std::string type(language.types.at(method.result));
  const std::string id = std::to_string(method.id);
  const std::string text = comment("  ///", proseOf(docstring));
  if (method.kind == Kind::property) {
    return text + "  " + type + " " + name + "() const { return call<" + type + ">(" + id +
           ", DISPATCH_PROPERTYGET); }\n" + "  void " + name + "(const " + type + "& value) { call<void>(" +
           id + ", DISPATCH_PROPERTYPUT, value); }\n\n";
  }
  const std::string parameters = list(method, ", ", [&](const Parameter& parameter) {
    const std::string fallback = parameter.inOut ? "nullptr" : fallbackOf(parameter);
    return cppType(language, parameter) + " " + std::string(parameter.name) +
           (parameter.optional ? " = " + fallback : "");
  });
  const std::string arguments = list(method, ", ", [](const Parameter& parameter) {
    return (parameter.inOut && !parameter.optional ? "&" : "") + std::string(parameter.name);
  });
  return text + statement("  ", type + " " + name + "(" + parameters + ") {") +
         statement("    ", "return call<" + type + ">(" + id + ", DISPATCH_METHOD" +
                               (arguments.empty() ? "" : ", ") + arguments + ");") +
         "  }\n\n";
}

const std::vector<Language> languages{
    {".cs",
     {{Type::boolean, "bool"},
      {Type::byte, "byte"},
      {Type::integer, "short"},
      {Type::text, "string"},
      {Type::variant, "object"}},
     "        ",
     ",",
     "///",
     csharpMember},
    {".pas",
     {{Type::boolean, "WordBool"},
      {Type::byte, "Byte"},
      {Type::integer, "Smallint"},
      {Type::text, "WideString"},
      {Type::variant, "OleVariant"}},
     "  ",
     ";",
     "//",
     pascalMember},
    {".h",
     {{Type::boolean, "bool"},
      {Type::byte, "unsigned char"},
      {Type::integer, "short"},
      {Type::text, "std::string"},
      {Type::variant, "Variant"}},
     "  ",
     ",",
     "///",
     cppMember},
};

// --- What all languages share

std::string contentOf(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string capitalised(std::string name) {
  name.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(name.front())));
  return name;
}

/// A constant with what it means above it. Pascal has no room for names but the unit's, so its have a first
/// part.
std::string constant(const Language& language, const std::string& prefix, const std::string& name, int value,
                     const std::string& meaning) {
  const std::string indent(language.constants);
  const bool hasRoom = language.extension == ".cs";
  return (meaning.empty() ? "" : comment(indent + std::string(language.comment), meaning)) + indent +
         (hasRoom ? "" : prefix) + name + " = " + std::to_string(value) + std::string(language.separator) +
         "\n";
}

/// The names come from the header, which alone has them.
std::string results(const Language& language, const std::string& header) {
  static const std::regex enumerator(R"(\n  (\w+) = (\d+),)");
  const std::string text = contentOf(header);
  std::string lines;
  for (std::sregex_iterator match(text.begin(), text.end(), enumerator), end; match != end; ++match) {
    const int code = std::stoi((*match)[2]);
    std::string meaning = velk::meaningOf(static_cast<velk::Byte>(code)) + ".";
    if (language.extension == ".cs") meaning = "<summary>" + xml(capitalised(meaning)) + "</summary>";
    lines += constant(language, "Result", capitalised((*match)[1]), code, capitalised(meaning));
  }
  if (lines.empty()) throw std::runtime_error(header + " names no results");
  return lines;
}

std::string modes(const Language& language) {
  std::string lines;
  for (int number = 1; number <= velk::parameters::lastMode; ++number) {
    const std::string code(velk::parameters::codeOf(static_cast<velk::Byte>(number), true));
    lines += constant(language, "Mode", code, number, "");
  }
  return lines;
}

std::string members(const Language& language, const velk::docstrings::ClassComments& settings,
                    const velk::docstrings::ClassComments& serial) {
  std::string text;
  for (const Method& method : table) {
    const auto& members = method.kind == Kind::property ? settings.members : serial.members;
    text += language.member(language, method, members.at(std::string(method.name)));
  }
  text.pop_back();  // the empty line behind the last
  return text;
}

/// "{0x5694bb07, 0x4353, ..." of an identifier.
std::string guid(std::string_view id) {
  std::string text = "{0x" + std::string(id.substr(0, 8)) + ", 0x" + std::string(id.substr(9, 4)) + ", 0x" +
                     std::string(id.substr(14, 4)) + ", {";
  const std::string rest = std::string(id.substr(19, 4)) + std::string(id.substr(24));
  for (std::size_t i = 0; i < rest.size(); i += 2) text += (i == 0 ? "0x" : ", 0x") + rest.substr(i, 2);
  return text + "}}";
}

std::string declarations(const std::string& path, const std::string& settings, const std::string& serial,
                         const std::string& resultHeader) {
  namespace identity = velk::identity;
  const auto language = std::find_if(languages.begin(), languages.end(),
                                     [&](const Language& row) { return path.ends_with(row.extension); });
  if (language == languages.end()) throw std::runtime_error(path + " is in no language known here");
  const auto text = [](std::string_view view) { return std::string(view); };
  const std::map<std::string, std::string> words{
      {"@library@", text(identity::library)},
      {"@help@", text(identity::libraryHelp)},
      {"@class@", text(identity::classHelp) + "."},
      {"@libraryId@", text(identity::libraryId)},
      {"@interfaceId@", text(identity::interfaceId)},
      {"@interfaceName@", text(identity::interfaceName)},
      {"@classId@", text(identity::classId)},
      {"@classGuid@", guid(identity::classId)},
      {"@results@\n", results(*language, resultHeader)},
      {"@modes@\n", modes(*language)},
      {"@methods@\n", members(*language, velk::docstrings::read(settings), velk::docstrings::read(serial))},
  };
  std::string result = contentOf(path);
  for (const auto& [word, value] : words) result = replaced(std::move(result), word, value);
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 5) throw std::runtime_error("usage: generate_declarations TEMPLATE SETTINGS SERIAL RESULT");
    std::cout << declarations(argv[1], argv[2], argv[3], argv[4]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "generate_declarations: " << error.what() << '\n';
    return 1;
  }
}
