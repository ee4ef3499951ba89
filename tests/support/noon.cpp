#include <cstdlib>
#include <ctime>
#include <string>

/// At midnight waits end early, as they must. Programs with a real clock therefore run in a time zone in
/// which it is noon now, and so do those that they start. tests/support/noon.sh does the same for scripts.
namespace {

[[maybe_unused]] const bool isNoon = [] {
  constexpr int hour = 3600;
  const auto hourOfDay = std::time(nullptr) / hour % 24;
  setenv("TZ", ("NOON" + std::to_string(hourOfDay - 12)).c_str(), 1);  // hours west of Greenwich
  tzset();
  return true;
}();

}  // namespace
