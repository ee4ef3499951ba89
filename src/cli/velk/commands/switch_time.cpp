#include "cli/velk/things/switch_time.h"

#include <optional>

#include "cli/velk/commands/change.h"
#include "cli/velk/things/switch_entry.h"

namespace velk::cli {
namespace {

struct SwitchTimeOptions : ChangeOptions {
  int block = 0;
  std::vector<std::string> words;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("N", block, "The switch time").required().range(0, switchTimes - 1);
    line.option("set", words,
                "set TIME DAYS OUTPUT=A:B...: change it, where what is left out stays; or clear: empty it")
        .typeName("[set [TIME] [DAYS] [OUTPUT=A:B...] | clear]");
  }
};

/// What the words behind "set" say.
struct WantedTime {
  std::optional<TimeOfDay> time;
  std::optional<Byte> days;
  std::vector<TypedEntry> entries;  ///< none: as they are
  bool clears = false;
};

template <class Value>
void setOnce(std::optional<Value>& value, Value typed, const std::string& word) {
  if (value) throw std::invalid_argument("\"" + word + "\" says a second time when to switch");
  value = typed;
}

WantedTime parseTimeSet(const std::vector<std::string>& words) {
  WantedTime wanted;
  for (std::size_t i = 1; i < words.size(); ++i) {
    const auto time = parseTime(words[i]);
    if (time) {
      if (words[i].find(':') != words[i].rfind(':')) {
        throw std::invalid_argument("\"" + words[i] + "\": a switch time has no seconds");
      }
      setOnce(wanted.time, *time, words[i]);
    } else if (const auto days = parseDays(words[i])) {
      setOnce(wanted.days, *days, words[i]);
    } else {
      wanted.entries.push_back(parseSwitchEntry(words[i]));
    }
  }
  return wanted;
}

/// None without words.
std::optional<WantedTime> parseTimeWords(const std::vector<std::string>& words) {
  if (words.empty()) return std::nullopt;
  if (words.front() == "clear" && words.size() == 1) return WantedTime{.clears = true};
  if (words.front() == "set" && words.size() > 1) return parseTimeSet(words);
  throw std::invalid_argument(
      "expected after the switch time: nothing, clear, or set [TIME] [DAYS] [OUTPUT=A:B...]");
}

/// The switch time as it will be. Throws std::invalid_argument with a sentence for one that cannot be.
SwitchTime switchTimeWith(const WantedTime& wanted, const SwitchTime& before, OutputNames& names) {
  if (wanted.clears) return {.block = before.block};
  SwitchTime after = before;
  const bool isComplete = wanted.time && wanted.days && !wanted.entries.empty();
  if (!isComplete && (!isUsed(before) || !before.readable)) {
    throw std::invalid_argument(titleOf(before) + (before.readable ? " is empty" : " cannot be read") +
                                ": it takes a time, days and what it switches");
  }
  if (wanted.time) {
    after.hour = wanted.time->hour;
    after.minute = wanted.time->minute;
  }
  if (wanted.days) after.days = *wanted.days;
  if (!wanted.entries.empty()) after.data = dataOf(wanted.entries, names);
  if (after.days == 0) throw std::invalid_argument(titleOf(before) + " needs days");
  checkData(after.block, after.data);
  after.readable = true;
  return after;
}

int changeTime(const SwitchTimeOptions& options, Serial& serial, const WantedTime& wanted) {
  OutputNames names(serial);
  const auto shown = [&](const SwitchTime& time) {
    return Shown{detailsOf(time, names), jsonOf(time, names)};
  };
  const SwitchTime before = readSwitchTime(serial, static_cast<Byte>(options.block));
  const SwitchTime after = switchTimeWith(wanted, before, names);
  const auto write = [&] {
    SwitchTime time = after;  // the method changes its arguments
    return serial.SwitchTime("W", time.block, time.days, time.hour, time.minute, time.data);
  };
  return carryOut(
      options,
      {.title = titleOf(after), .before = shown(before), .after = shown(after), .write = write, .read = [&] {
         return shown(readSwitchTime(serial, after.block));
       }});
}

std::string switchTimeLine(const SwitchTime& time, OutputNames& names) {
  if (!isUsed(time)) return titleOf(time) + ": none\n";
  return titleOf(time) + ": " + timeOf(time) + " " + daysOf(time.days) + ", " + actionOf(time, names) + "\n";
}

int carryOutSwitchTime(const SwitchTimeOptions& options) {
  const auto wanted = parseTimeWords(options.words);
  const auto connection = open(options.link.required());
  if (wanted) return changeTime(options, connection->serial(), *wanted);
  const SwitchTime time = readSwitchTime(connection->serial(), static_cast<Byte>(options.block));
  OutputNames names(connection->serial());
  if (options.json) {
    std::cout << jsonOf(time, names) << '\n';
  } else {
    std::cout << switchTimeLine(time, names);
  }
  return success;
}

}  // namespace

void addSwitchTime(const CommandLine& velk, Job& job) {
  addCommand<SwitchTimeOptions>(
      velk, job, "switch-time", "Show a switch time, set or clear it",
      "  velk switch-time --simulate 0\n"
      "  velk switch-time 0 set 07:45 --dry-run\n"
      "  velk switch-time 5 set 07:45 Mon-Fri \"Kitchen ceiling=255:2\" 7=0:4\n"
      "  velk switch-time 5 clear\n"
      "\nDays: Mon, Mon-Fri, Sat,Sun, weekdays, weekend, daily. An output is its number, its name or a\n"
      "beginning of it; what the two numbers behind it do is for the output to say, so copy them from a\n"
      "switch time that does the same. 101.2 is an action, which stands alone. What is left out stays as it\n"
      "is.\n",
      carryOutSwitchTime);
}

}  // namespace velk::cli
