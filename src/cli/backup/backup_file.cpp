#include "cli/backup/backup_file.h"

#include <array>
#include <filesystem>
#include <fstream>

#include "cli/failure.h"
#include "cli/words.h"

namespace velk::cli {
namespace {

constexpr const char* format = "velk-backup";
constexpr int version = 1;

/// By area.
constexpr std::array<const char*, 3> areaNames{"V", "H", "H+"};

[[noreturn]] void fail(const std::string& path, const std::string& why) {
  throw Failure(badFile, path + ": " + why);
}

std::string addressOf(Spot spot) {
  return hex(Bytes{character(spot.page), character(spot.offset)});
}

/// A finished backup leaves out what is zero; an unfinished one has to tell what was read.
Json jsonOf(const Lines& lines, bool withZeros) {
  Json json = Json::object();
  for (const char* const name : areaNames) json[name] = Json::object();
  for (const auto& [spot, bytes] : lines) {
    if (!withZeros && bytes == Bytes(lineSize, '\0')) continue;
    json[areaNames.at(static_cast<std::size_t>(spot.area))][addressOf(spot)] = hex(bytes);
  }
  return json;
}

Lines linesOf(const Json& json) {
  Lines lines;
  for (std::size_t i = 0; i < areaNames.size(); ++i) {
    for (const auto& [address, digits] : json.at(areaNames.at(i)).items()) {
      const Bytes at = bytesOfHex(address);
      const Bytes bytes = bytesOfHex(digits.get<std::string>());
      if (at.size() != 2 || byteAt(at, 1) % lineSize != 0 || bytes.size() != lineSize) {
        throw std::invalid_argument("the line \"" + address + "\" does not name 16 bytes");
      }
      lines[{static_cast<Area>(i), byteAt(at, 0), byteAt(at, 1)}] = bytes;
    }
  }
  return lines;
}

Backup backupOf(const Json& json) {
  if (json.value("format", std::string()) != format) throw std::invalid_argument("it is no backup");
  if (json.at("version").get<int>() != version) throw std::invalid_argument("its version is not known here");
  Backup backup{.begun = json.at("begun").get<std::string>(),
                .link = json.at("link").get<std::string>(),
                .complete = json.at("complete").get<bool>(),
                .lines = linesOf(json.at("memory")),
                .modules = {}};
  for (const Json& module : json.at("modules")) backup.modules.push_back(moduleOfJson(module));
  return backup;
}

}  // namespace

Backup loadBackup(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) fail(path, "it cannot be read");
  try {
    return backupOf(Json::parse(in));
  } catch (const std::invalid_argument& error) {
    fail(path, error.what());
  }
}

void saveText(const std::string& path, const std::string& text) {
  const std::string beside = path + ".new";
  {
    std::ofstream out(beside, std::ios::binary);
    out << text;
    out.flush();
    if (!out) fail(beside, "it cannot be written");
  }
  std::error_code error;
  std::filesystem::rename(beside, path, error);
  if (error) fail(path, error.message());
}

void saveBackup(const std::string& path, const Backup& backup) {
  Json json{{"format", format},
            {"version", version},
            {"begun", backup.begun},
            {"link", backup.link},
            {"complete", backup.complete},
            {"memory", jsonOf(backup.lines, !backup.complete)},
            {"modules", Json::array()}};
  for (const Module& module : backup.modules) json["modules"].push_back(jsonOf(module));
  saveText(path, json.dump(1) + "\n");
}

std::string partOf(const std::string& path) {
  return path + ".part";
}

Byte byteOf(const Lines& lines, Spot spot) {
  const auto at = static_cast<std::size_t>(spot.offset % lineSize);
  const auto found =
      lines.find({spot.area, spot.page, static_cast<Byte>(spot.offset - spot.offset % lineSize)});
  return found == lines.end() ? Byte{0} : byteAt(found->second, at);
}

simulator::Store storeOf(const Lines& lines) {
  using simulator::Memory;
  constexpr std::array memories{Memory::external, Memory::block, Memory::highBlock};
  simulator::Store store;
  for (const auto& [spot, bytes] : lines) {
    const bool external = spot.area == Area::external;
    store.write({.memory = memories.at(static_cast<std::size_t>(spot.area)),
                 .dph = external ? spot.page : spot.offset,
                 .dpl = external ? spot.offset : spot.page},
                bytes);
  }
  return store;
}

}  // namespace velk::cli
