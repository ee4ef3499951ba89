#include "cli/velk/things/preset.h"

#include "cli/velk/connection/retry.h"
#include "cli/velk/things/words.h"

namespace velk::cli {
namespace {

constexpr Byte firstRecord = 3;
constexpr Byte highestRecord = 99;
constexpr std::size_t recordSize = 4;

}  // namespace

Preset readPreset(Serial& serial, Byte number, Records records) {
  Preset preset{.number = number};
  std::string text;
  Bytes data;
  Byte simulation = 0;
  const bool all = records == Records::all;
  const auto read = [&] {
    return serial.Preset("R", number, text, all ? highestRecord : firstRecord, data, preset.delay1,
                         preset.delay2, simulation);
  };
  expectRead(read, "reading preset " + std::to_string(number));
  preset.text = label(text);
  preset.simulated = simulation != 0;
  for (std::size_t i = 0; all && i < data.size(); i += recordSize) {
    Bytes record = data.substr(i, recordSize);
    if (record == Bytes(recordSize, '\0')) continue;
    preset.records.push_back({static_cast<Byte>(firstRecord + i / recordSize), std::move(record)});
  }
  return preset;
}

bool isUsed(const Preset& preset) {
  return !preset.text.empty() || preset.delay1 != 0 || preset.simulated || !preset.records.empty();
}

Json jsonOfHead(const Preset& preset) {
  return {{"preset", preset.number},
          {"text", preset.text},
          {"delay1", preset.delay1},
          {"delay2", preset.delay2},
          {"simulation", preset.simulated}};
}

Json jsonOf(const Preset& preset) {
  Json json = jsonOfHead(preset);
  json["records"] = Json::array();
  for (const Preset::Record& record : preset.records) {
    json["records"].push_back({{"record", record.number}, {"bytes", jsonOfBytes(record.bytes)}});
  }
  return json;
}

Details detailsOf(const Preset& preset) {
  Details details{{"text", preset.text},
                  {"delay 1", std::to_string(preset.delay1)},
                  {"delay 2", preset.delay2 == 0 ? "none" : std::to_string(preset.delay2)},
                  {"simulation", preset.simulated ? "yes" : "no"}};
  for (const Preset::Record& record : preset.records) {
    details.push_back({"record " + std::to_string(record.number), numbers(record.bytes)});
  }
  return details;
}

}  // namespace velk::cli
