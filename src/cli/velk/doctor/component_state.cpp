#include "cli/velk/doctor/component_state.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "values/hex.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

struct Cause {
  std::uint32_t result;
  std::string_view sentence;
};

constexpr std::array causes{
    Cause{0x800401F3, "no component of this name is registered"},
    Cause{0x80040154, "it is not registered for programs of this bitness"},
    Cause{0x8007007E, "its file is not there"},
    Cause{0x800700C1, "its file is for programs of the other bitness"},
    Cause{0x80070005, "this user may not read its file"},
};

/// Of a library of Windows; 0 for any other file.
int bitsOf(const fs::path& library) {
  constexpr std::size_t headerAt = 60;
  constexpr std::size_t longest = 4096;
  std::ifstream in(library, std::ios::binary);
  Bytes start(longest, '\0');
  in.read(start.data(), longest);
  const std::size_t header = byteAt(start, headerAt) + byteAt(start, headerAt + 1) * std::size_t{256};
  if (header + 6 > longest || start.compare(header, 4, std::string_view("PE\0\0", 4)) != 0) return 0;
  const std::string_view machine = std::string_view(start).substr(header + 4, 2);
  if (machine == "\x64\x86") return wide;
  return machine == "\x4c\x01" ? narrow : 0;
}

/// The one that programs of this bitness get; null when there is none.
const Registration* effective(const ComponentState& state, int bits) {
  const Registration* best = nullptr;
  for (const Registration& registration : state.registrations) {
    const bool counts = registration.bits == bits && !registration.library.empty();
    if (counts && (best == nullptr || registration.scope == Scope::user)) best = &registration;
  }
  return best;
}

std::string quoted(const fs::path& path) {
  const std::string text = textOf(path);
  return text.find(' ') == std::string::npos ? text : '"' + text + '"';
}

Remedy remedy(const ComponentState& state, int bits, Scope scope) {
  const bool other = bits == narrow && !state.narrowFolder.empty();
  const fs::path registrar = other ? state.narrowFolder / "regsvr32" : fs::path("regsvr32");
  return {.bits = bits,
          .scope = scope,
          .command = quoted(registrar) + (scope == Scope::user ? " /n /i:user " : " ") +
                     quoted(libraryFor(state, bits))};
}

/// For whom the component has to be registered so that programs of this bitness get it.
std::vector<Scope> missingFor(const ComponentState& state, int bits) {
  const Registration* const found = effective(state, bits);
  if (found == nullptr) return {Scope::everybody, Scope::user};
  if (!faultOf(*found).empty()) return {found->scope};
  // What is registered for a user does not count in a program that was started as an administrator.
  if (bits == ownBits && state.result != 0) return {Scope::everybody};
  return {};
}

}  // namespace

std::string nameOf(int bits) {
  return std::to_string(bits) + "-bit";
}

std::string nameOf(Scope scope) {
  return scope == Scope::user ? "this user" : "everybody";
}

/// It lies beside the program, or in the other one of two folders side by side.
std::filesystem::path libraryFor(const ComponentState& state, int bits) {
  constexpr const char* name = "VelkCom.dll";
  const fs::path folder = state.program.parent_path();
  for (const fs::path& path : {folder / name, folder.parent_path() / (bits == wide ? "x64" : "x86") / name}) {
    if (bitsOf(path) == bits) return path;
  }
  return name;
}

std::string_view faultOf(const Registration& registration) {
  std::error_code ignored;
  if (registration.library.empty()) return "";
  if (!fs::exists(registration.library, ignored)) return "the file is not there";
  return bitsOf(registration.library) == registration.bits ? "" : "the file is not for these programs";
}

std::string failureOf(const ComponentState& state) {
  if (state.result == 0) return {};
  const auto* const found = std::find_if(causes.begin(), causes.end(),
                                         [&](const Cause& cause) { return cause.result == state.result; });
  return std::string(found == causes.end() ? "it cannot be created" : found->sentence)
      .append(" (0x" + hex(state.result) + ")");
}

std::vector<Remedy> remediesFor(const ComponentState& state) {
  std::vector<Remedy> remedies;
  for (const int bits : {wide, narrow}) {
    const bool known = std::any_of(state.registrations.begin(), state.registrations.end(),
                                   [&](const Registration& row) { return row.bits == bits; });
    if (!known) continue;
    for (const Scope scope : missingFor(state, bits)) remedies.push_back(remedy(state, bits, scope));
  }
  return remedies;
}

}  // namespace velk::cli
