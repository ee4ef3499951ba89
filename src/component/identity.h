#pragma once

#include <string_view>

/// Under which names and identifiers the system knows the component. Fixed for ever: programs that were built
/// with the type library hold them.
namespace velk::identity {

constexpr std::string_view library = "VelkCom";
constexpr std::string_view libraryHelp = "VelkCom: configuration of home-automation bus controllers";
constexpr std::string_view libraryId = "5694BB07-4353-4508-8C6C-0B988D8DD518";
constexpr std::string_view libraryVersion = "1.0";

constexpr std::string_view interfaceName = "_Serial";
constexpr std::string_view interfaceId = "9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02";

constexpr std::string_view className = "Serial";
constexpr std::string_view classHelp = "One connection to the controller of the bus";
constexpr std::string_view classId = "DD354E3B-3B0A-4871-81E2-879F41FB2B63";

constexpr std::string_view progId = "VelkCom.Serial";
constexpr std::string_view versionedProgId = "VelkCom.Serial.1";

}  // namespace velk::identity
