#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "cli/shared/file_names.h"
#include "values/bytes.h"

/// How the component is registered in this system, and whether it can be created.
namespace velk::cli {

enum class Scope : Byte { everybody, user };

constexpr int narrow = 32;
constexpr int wide = 64;
constexpr int ownBits = sizeof(void*) == 8 ? wide : narrow;

/// "64-bit".
std::string nameOf(int bits);

/// "this user" or "everybody".
std::string nameOf(Scope scope);

/// A place in the registry where programs find the component; the user's own comes before everybody's.
struct Registration {
  int bits;  ///< of the programs that look there
  Scope scope;
  std::filesystem::path library;  ///< empty when nothing is registered there
};

struct ComponentState {
  std::vector<Registration> registrations;  ///< all places that this system has
  std::filesystem::path program;            ///< this one
  std::filesystem::path narrowFolder;       ///< 64-bit systems: where the system keeps its 32-bit programs
  std::uint32_t result = 0;                 ///< of creating the component here; 0, or the system's error
};

/// Looks at the registry and creates the component once. Windows only.
ComponentState inspectComponent();

/// What inspectComponent looks at: the places, and what creating comes to.
std::vector<Registration> findRegistrations();
std::uint32_t tryToCreate();

/// The library of a bitness that came with this program; its name alone when there is none.
std::filesystem::path libraryFor(const ComponentState& state, int bits);

/// What is wrong with a registered library; empty for nothing.
std::string_view faultOf(const Registration& registration);

/// Why the component cannot be created in this program; empty if it can.
std::string failureOf(const ComponentState& state);

/// A line to type that registers the component.
struct Remedy {
  int bits;
  Scope scope;
  std::string command;
};

/// What makes programs of every bitness find the component, where there is a choice both ways. None when they
/// do.
std::vector<Remedy> remediesFor(const ComponentState& state);

}  // namespace velk::cli
