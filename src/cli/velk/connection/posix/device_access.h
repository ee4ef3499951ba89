#pragma once

#include <string>

namespace velk::cli {

/// Why this user may not open a device, and what to do; the group is what a user can join.
std::string whyForbidden(const std::string& device);

/// The programs that have a device open, as far as this user may know, three of them at most: "velk (process
/// 123), cat (process 124)". Empty for none.
std::string holdersOf(const std::string& device);

}  // namespace velk::cli
