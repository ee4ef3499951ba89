#pragma once

#include <string>

namespace velk::cli {

/// The search path of one user or of everybody.
enum class PathOwner : unsigned char { user, everybody };

/// What became of it; the numbers are the program's exit status.
enum class PathChange : unsigned char { done, asItWas, failed };

/// Puts a folder on the search path in the registry, and tells the programs that run. A path that would grow
/// beyond what the system takes, or is no text, stays as it is: `failed`.
PathChange addToPath(PathOwner owner, const std::wstring& folder);

/// Takes it back.
PathChange removeFromPath(PathOwner owner, const std::wstring& folder);

}  // namespace velk::cli
