#include "cli/house/backup_file.h"

#include <array>
#include <ctime>
#include <iostream>
#include <sstream>

#include "cli/house/check.h"
#include "cli/house/checksum.h"
#include "cli/house/event_list.h"
#include "cli/shared/failure.h"
#include "cli/shared/files.h"
#include "timed/simulation.h"
#include "values/hex.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

constexpr const char* format = "velk-backup";
constexpr int unverifiedVersion = 1;
constexpr int version = 2;
constexpr std::size_t pageSize = 256;

/// No configuration lies in the fourth.
constexpr std::array areas{Area::external, Area::block, Area::highBlock};

Json jsonOf(const Lines& lines) {
  Json json = Json::object();
  for (const Area area : areas) json[nameOf(area)] = Json::object();
  for (const auto& [at, bytes] : lines) json[nameOf(at.area)].append(digitsOf(at), hex(bytes));
  return json;
}

Lines linesOf(const Json& json) {
  Lines lines;
  for (const Area area : areas) {
    for (const auto& [address, digits] : json.at(nameOf(area)).items()) {
      const Bytes at = bytesOfHex(address);
      const Bytes bytes = bytesOfHex(digits.get<std::string>());
      if (at.size() != 2 || byteAt(at, 1) % lineSize != 0 || bytes.size() != lineSize) {
        throw std::invalid_argument("the line \"" + address + "\" does not name 16 bytes");
      }
      lines[{area, byteAt(at, 0), byteAt(at, 1)}] = bytes;
    }
  }
  return lines;
}

std::vector<Module> modulesOf(const Json& json) {
  std::vector<Module> modules;
  for (const Json& module : json.elements()) modules.push_back(moduleOfJson(module));
  return modules;
}

/// The lines of a list of events up to its end; behind that is nothing.
void addEvents(const simulator::Store& store, int hour, Lines& lines) {
  Address line = timed::eventList(static_cast<Byte>(hour / hoursOfDay), static_cast<Byte>(hour % hoursOfDay));
  Bytes list = store.read(line, pageSize);
  if (const auto end = endOfEvents(list)) list.resize(*end + 1);
  for (std::size_t at = 0; at < list.size(); at += lineSize) {
    line.offset = static_cast<Byte>(at);
    lines[line] = padded(slice(list, at, lineSize), lineSize, '\0');
  }
}

/// The end of a file whose text before it is this one.
std::string checksumLine(std::string_view before) {
  return " \"checksum\": \"" + hex(crc32(before)) + "\"\n}\n";
}

/// Whether every byte is as it was written.
bool isIntact(std::string_view text) {
  const std::size_t size = checksumLine({}).size();
  if (text.size() < size) return false;
  const std::string_view before = text.substr(0, text.size() - size);
  return text.substr(before.size()) == checksumLine(before);
}

}  // namespace

std::string now() {
  const std::time_t time = std::time(nullptr);
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", std::localtime(&time))};
}

std::string textOf(const Backup& backup) {
  Json json{{"format", format},
            {"version", version},
            {"begun", backup.begun},
            {"link", backup.link},
            {"complete", backup.complete},
            {"lines", backup.lines.size()},
            {"memory", jsonOf(backup.lines)},
            {"modules", Json::array()}};
  for (const Module& module : backup.modules) json["modules"].push_back(jsonOf(module));
  std::string text = json.dump(1);
  text.replace(text.size() - 2, 2, ",\n");  // one more member follows
  return text + checksumLine(text);
}

Backup parseBackup(std::string text) {
  std::erase(text, '\r');  // what a system or a mail does to the ends of lines changes nothing
  std::istringstream in(text);
  const Json json = Json::parse(in);
  if (json.value("format", std::string()) != format) throw std::invalid_argument("it is no backup");
  const int given = json.at("version").get<int>();
  if (given != version && given != unverifiedVersion) {
    throw std::invalid_argument("its version is not known here");
  }
  Backup backup{.begun = json.at("begun").get<std::string>(),
                .link = json.at("link").get<std::string>(),
                .complete = json.at("complete").get<bool>(),
                .lines = linesOf(json.at("memory")),
                .modules = modulesOf(json.at("modules"))};
  checkPlaces(backup.lines);
  if (given == unverifiedVersion) {
    backup.condition = Condition::unverified;
    return backup;
  }
  const int count = json.at("lines").get<int>();
  if (!std::cmp_equal(count, backup.lines.size())) {
    throw std::invalid_argument("it should have " + std::to_string(count) + " lines and has " +
                                std::to_string(backup.lines.size()));
  }
  if (backup.complete) checkComplete(backup.lines);
  if (!isIntact(text)) backup.condition = Condition::edited;
  return backup;
}

Backup loadBackup(const std::string& path, std::string_view program) {
  const auto fail = [&](const std::string& why) { return Failure(badFile, path + ": " + why); };
  try {
    Backup backup = parseBackup(readFile(path));
    if (!backup.complete) throw fail("the backup is unfinished");
    if (backup.condition != Condition::intact) {
      std::cerr << program << ": " << path << ": " << textOf(backup.condition) << '\n';
    }
    return backup;
  } catch (const std::invalid_argument& error) {
    throw fail(error.what());
  }
}

std::string textOf(Condition condition) {
  switch (condition) {
    case Condition::intact:
      return "the file is as velk wrote it";
    case Condition::edited:
      return "the file was changed after velk wrote it";
    case Condition::unverified:
      return "the file is of format 1, without a checksum; where lines are missing there, zeros are meant";
  }
  return {};
}

Byte byteOf(const Lines& lines, Address at) {
  const auto index = static_cast<std::size_t>(at.offset % lineSize);
  at.offset = static_cast<Byte>(at.offset - index);
  const auto found = lines.find(at);
  return found == lines.end() ? Byte{0} : byteAt(found->second, index);
}

simulator::Store storeOf(const Lines& lines) {
  simulator::Store store;
  for (const auto& [at, bytes] : lines) store.write(at, bytes);
  return store;
}

Lines linesOf(const simulator::Store& store) {
  Lines lines;
  for (const Address line : fixedLines([](ThingKind /*kind*/) { return true; })) {
    lines[line] = onlyConfiguration(line, store.read(line, lineSize));
  }
  for (int hour = 0; hour < daysOfWeek * hoursOfDay; ++hour) addEvents(store, hour, lines);
  return lines;
}

}  // namespace velk::cli
