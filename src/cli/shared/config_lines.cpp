#include "cli/shared/config_lines.h"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>

namespace velk::cli {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// Up to a "#" that stands in no quotes.
std::string_view withoutComment(std::string_view line) {
  char quote = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quote == 0 && c == '#') return line.substr(0, i);
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    }
  }
  return line;
}

/// A line without its comment, and its parts.
struct Parts {
  bool isSection;
  bool hasEnd;  ///< the section's bracket, or the sign between name and value
  std::string_view name;
  std::string_view value;

  explicit Parts(std::string_view line) : isSection(line.front() == '[') {
    const auto sign = line.find('=');
    hasEnd = isSection ? line.size() > 1 && line.back() == ']' : sign != std::string_view::npos;
    if (!hasEnd) return;
    name = trimmed(isSection ? line.substr(1, line.size() - 2) : line.substr(0, sign));
    if (!isSection) value = trimmed(line.substr(sign + 1));
  }

  [[nodiscard]] bool isQuoted() const { return !value.empty() && (value[0] == '"' || value[0] == '\''); }
  [[nodiscard]] std::string_view inQuotes() const {
    return isQuoted() && value.size() > 1 ? value.substr(1, value.size() - 2) : std::string_view();
  }
};

bool isNameOfValue(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
  });
}

struct Fault {
  bool (*isOf)(const Parts& line);
  const char* text;
};

/// The first that a line has is told.
constexpr std::array faults{
    Fault{[](const Parts& line) { return line.isSection && !line.hasEnd; }, "there is no ] at its end"},
    Fault{[](const Parts& line) {
            return line.isSection &&
                   (line.name.empty() || line.name.find_first_of("[]\"'") != std::string_view::npos);
          },
          "between [ and ] stands a name without brackets and quotes"},
    Fault{[](const Parts& line) { return !line.isSection && !(line.hasEnd && isNameOfValue(line.name)); },
          "it is neither [section] nor name = value"},
    Fault{[](const Parts& line) { return !line.isSection && line.value.empty(); }, "there is no value"},
    Fault{[](const Parts& line) {
            return line.isQuoted() && (line.value.size() < 2 || line.value.back() != line.value.front());
          },
          "the quotes do not end, or not at its end"},
    Fault{[](const Parts& line) { return line.inQuotes().find('#') != std::string_view::npos; },
          R"(in quotes "#" is written \x23)"},
    Fault{[](const Parts& line) {
            return line.isQuoted() && line.inQuotes().find(line.value[0]) != std::string_view::npos;
          },
          R"(in quotes the quote is written \x22, or \x27)"},
    Fault{[](const Parts& line) {
            return !line.isQuoted() && line.value.find_first_of(" \t,[]\"'") != std::string_view::npos;
          },
          "a value of more than one word stands in quotes"},
};

[[noreturn]] void fail(int line, const std::string& why) {
  throw std::invalid_argument(std::to_string(line) + ": " + why);
}

/// Where something stands; what stands twice is refused.
class Places {
 public:
  void add(std::string_view name, int line) {
    const auto [at, isNew] = lines_.emplace(name, line);
    if (!isNew) fail(line, "\"" + at->first + "\" stands in line " + std::to_string(at->second) + ", too");
  }
  [[nodiscard]] bool empty() const { return lines_.empty(); }
  void clear() { lines_.clear(); }

 private:
  std::map<std::string, int, std::less<>> lines_;
};

}  // namespace

std::string checkedConfiguration(std::string_view text) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  std::string checked;
  Places sections;
  Places names;  // of the section
  for (int number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmed(withoutComment(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty()) continue;
    const Parts parts(line);
    const auto* const fault =
        std::find_if(faults.begin(), faults.end(), [&](const Fault& f) { return f.isOf(parts); });
    if (fault != faults.end()) fail(number, fault->text);
    if (parts.isSection) {
      sections.add(parts.name, number);
      names.clear();
      checked += "[" + std::string(parts.name) + "]\n";
    } else {
      if (sections.empty()) fail(number, "no [section] stands in front of it");
      names.add(parts.name, number);
      checked += std::string(parts.name) + " = " + std::string(parts.value) + "\n";
    }
  }
  return checked;
}

}  // namespace velk::cli
