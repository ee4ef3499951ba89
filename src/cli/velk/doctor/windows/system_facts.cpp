#include "cli/velk/doctor/windows/system_facts.h"

#include <windows.h>

#include <array>
#include <cstdio>

#include "cli/shared/native_text.h"
#include "cli/shared/windows/wide.h"
#include "platform/windows/handle.h"
#include "platform/windows/system_function.h"

namespace velk::cli {
namespace {

using WineVersion = const char*(CDECL*)();

WineVersion wineVersion() {
  return platform::systemFunction<WineVersion>(L"ntdll.dll", "wine_get_version");
}

/// The number that the system has, not the one that it shows programs of older days.
std::string windowsVersion() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
  const auto getVersion = platform::systemFunction<GetVersion>(L"ntdll.dll", "RtlGetVersion");
  if (getVersion == nullptr || getVersion(&version) != 0) return "unknown";
  std::string text = std::to_string(version.dwMajorVersion) + '.' + std::to_string(version.dwMinorVersion) +
                     '.' + std::to_string(version.dwBuildNumber);
  if (const std::string pack = utf8Of(version.szCSDVersion); !pack.empty()) text += ' ' + pack;
  return isWine() ? text + ", of Wine " + wineVersion()() : text;
}

std::string processor() {
  return environment("PROCESSOR_IDENTIFIER").value_or("unknown") + ", " +
         environment("NUMBER_OF_PROCESSORS").value_or("?") + " of them";
}

std::string language() {
  std::array<wchar_t, LOCALE_NAME_MAX_LENGTH> name{};
  GetUserDefaultLocaleName(name.data(), static_cast<int>(name.size()));
  return utf8Of(name.data()) + ", code page " + std::to_string(GetACP()) + ", of consoles " +
         std::to_string(GetOEMCP());
}

/// The bias is what local time lacks to UTC, in minutes.
std::string timeZone() {
  DYNAMIC_TIME_ZONE_INFORMATION zone{};
  const DWORD season = GetDynamicTimeZoneInformation(&zone);
  const LONG bias = zone.Bias + (season == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : zone.StandardBias);
  std::array<char, 32> offset{};
  std::snprintf(offset.data(), offset.size(), "UTC%c%02ld:%02ld ", bias > 0 ? '-' : '+', std::abs(bias) / 60,
                std::abs(bias) % 60);
  return offset.data() + utf8Of(zone.TimeZoneKeyName);
}

}  // namespace

bool isWine() {
  return wineVersion() != nullptr;
}

bool isAdministrator() {
  HANDLE token = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == 0) return false;
  const platform::Handle closed = platform::owned(token);
  TOKEN_ELEVATION elevation{};
  DWORD size = 0;
  const BOOL told = GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size);
  return told != 0 && elevation.TokenIsElevated != 0;
}

std::vector<std::pair<std::string, std::string>> systemFacts() {
  return {{"Windows", windowsVersion()},
          {"processor", processor()},
          {"language", language()},
          {"time zone", timeZone()},
          {"rights", isAdministrator() ? "of an administrator" : "of a user"}};
}

}  // namespace velk::cli
