#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "cli/velk/backup/controller_backup.h"
#include "cli/velk/backup/describe.h"
#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/things/clock.h"
#include "platform/host.h"
#include "values/runtime_error.h"

namespace velk::cli {
namespace {

using SteadyClock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

struct WatchOptions : LinkedOptions {
  std::vector<std::string> only;
  double interval = 10;
  double seconds = std::numeric_limits<double>::infinity();
  int count = 0;
  double patience = 300;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("--only", only, "Watch these sections alone")
        .delimiter(',')
        .typeName("SECTION,...")
        .oneValueEach();
    line.option("--interval", interval, "Pause between two rounds, at least as long as a round takes")
        .typeName("SECONDS")
        .showDefault();
    line.option("--for", seconds, "End after so many seconds").typeName("SECONDS");
    line.option("--count", count, "End after so many rounds").typeName("N").range(1, 1'000'000);
    line.option("--patience", patience, "Give a lost link up after so many seconds")
        .typeName("SECONDS")
        .showDefault();
  }

  /// Throws std::invalid_argument with a sentence.
  void check() const {
    const bool fits = interval >= 0 && seconds >= 0 && patience >= 0 && std::isfinite(interval);
    if (!fits)
      throw std::invalid_argument("--interval, --for and --patience take a number of seconds from 0 on");
  }
};

/// "5 s", "2 min", "3 h".
std::string roughly(Seconds time) {
  constexpr double minute = 60;
  constexpr double hour = 3600;
  if (time.count() < 2 * minute) return std::to_string(std::lround(time.count())) + " s";
  if (time.count() < 2 * hour) return std::to_string(std::lround(time.count() / minute)) + " min";
  return std::to_string(std::lround(time.count() / hour)) + " h";
}

Seconds since(SteadyClock::time_point start) {
  return SteadyClock::now() - start;
}

/// Prints a line an event, at once.
class Log {
 public:
  explicit Log(bool asJson) : asJson_(asJson) {}

  void tell(const Difference& difference) const {
    print(textOf(difference), "change",
          {{"thing", difference.title},
           {"bytes", difference.addresses.size()},
           {"changes", jsonOf(difference.changes)}});
  }

  void tell(const std::string& text, const ClockReading& clock) const {
    print("clock: " + text, "clock",
          {{"seconds_ahead", clock.secondsAhead ? Json(*clock.secondsAhead) : Json()}, {"held", clock.held}});
  }

  /// Something about the link, which people are told on standard error.
  void tellLink(const std::string& event, const std::string& text) const {
    if (asJson_) print("", event, {{"text", text}});
    std::cerr << "velk: " << text << '\n';
  }

 private:
  void print(const std::string& text, const std::string& event, const Json& members) const {
    if (!asJson_) {
      std::cout << now() << "  " << text << '\n' << std::flush;
      return;
    }
    Json line{{"time", now()}, {"event", event}};
    for (const auto& [name, value] : members.items()) line[name] = value;
    std::cout << line << '\n' << std::flush;
  }

  bool asJson_;
};

class Watch {
 public:
  explicit Watch(const WatchOptions& options)
      : options_(options),
        link_(options.link.required()),
        sections_(parseSections(options.only)),
        log_(options.json) {}

  void run() {
    connection_ = open(link_);
    watchInterrupts();
    try {
      begin();
      while (!isOver()) {
        rest(std::max(Seconds(options_.interval), roundTime_));
        if (!isOver()) tryRound();
      }
    } catch (const Failure& failure) {
      if (failure.status != interrupted) throw;
    }
  }

 private:
  [[nodiscard]] bool isOver() const {
    const bool isCounted = options_.count != 0 && rounds_ >= options_.count;
    return isCounted || isInterrupted() || since(start_).count() >= options_.seconds;
  }

  /// What is there to start with.
  void begin() {
    const auto start = SteadyClock::now();
    known_ = readLike(serial(), {}, sections_).lines;
    readClockOnce();
    roundTime_ = since(start);
    lastGood_ = SteadyClock::now();
    log_.tellLink("watching", "watching " + std::to_string(known_.size()) +
                                  " lines of 16 bytes; a round takes " + roughly(roundTime_) +
                                  ", the pause behind it " +
                                  roughly(std::max(Seconds(options_.interval), roundTime_)));
  }

  void tryRound() {
    try {
      // A file is read when it is opened.
      if (!link_.backup.empty()) connection_ = open(link_);
      const auto start = SteadyClock::now();
      readSections();
      readClockOnce();
      roundTime_ = since(start);
      lastGood_ = SteadyClock::now();
      ++rounds_;
    } catch (const Failure& failure) {
      if (failure.status != badResult && failure.status != noLink) throw;
      openAgain(failure.what());
    } catch (const RuntimeError& error) {
      openAgain(error.what());
    }
  }

  /// One section after the other: what differs is told when its section is read.
  void readSections() {
    for (const std::string_view section : cli::sections()) {
      if (!isSelected(sections_, section)) continue;
      Lines lines;
      readMissing(
          serial(), lines, [section](ThingKind kind) { return sectionOf(kind) == section; },
          [](std::size_t, std::size_t, std::size_t) {});
      Backup before{.lines = known_};
      for (auto& [at, bytes] : lines) known_[at] = std::move(bytes);
      if (known_ == before.lines) continue;
      for (const Difference& difference : compare(before, {.lines = known_}, sections_))
        log_.tell(difference);
    }
  }

  /// A reading is as fine as a second on either side.
  void readClockOnce() {
    constexpr long threshold = 2;
    if (!link_.backup.empty()) return;  // no file holds one
    const ClockReading clock = readClock(serial());
    const auto now = SteadyClock::now();
    if (!clock_) {
      log_.tell(deviationOf(clock), clock);
    } else {
      const bool bothKnown = clock.secondsAhead && clock_->secondsAhead;
      const bool isSame = clock.held == clock_->held &&
                          clock.secondsAhead.has_value() == clock_->secondsAhead.has_value() &&
                          (!bothKnown || std::labs(*clock.secondsAhead - *clock_->secondsAhead) < threshold);
      if (isSame) return;
      log_.tell(deviationOf(*clock_) + " -> " + deviationOf(clock) + ", within " + roughly(now - clockTold_),
                clock);
    }
    clock_ = clock;
    clockTold_ = now;
  }

  /// Opens a link that was lost, with growing pauses. Throws `Failure` when the patience is at its end.
  void openAgain(const std::string& why) {
    constexpr Seconds longest(30);
    log_.tellLink("lost", "the link is lost: " + why);
    for (Seconds pause(1);; pause = std::min(pause * 2, longest)) {
      rest(pause);
      checkInterrupt();
      close();
      try {
        connection_ = open(link_);
        return log_.tellLink("opened", "the link is open again");
      } catch (const Failure& failure) {
        if (failure.status != noLink) throw;
        if (since(lastGood_).count() >= options_.patience || isOver()) throw;
      }
    }
  }

  void close() {
    connection_.reset();
    platform::Host& host = platform::threadHost();
    host.socket().close();
    if (host.port().isOpen()) host.port().close();
  }

  /// Waits, in real time also where the link's is simulated, until somebody wants to end.
  void rest(Seconds time) {
    constexpr Seconds slice(0.1);
    const auto start = SteadyClock::now();
    for (Seconds left = time; left.count() > 0 && !isOver(); left = time - since(start)) {
      const auto next = std::chrono::duration_cast<std::chrono::nanoseconds>(std::min(left, slice));
      platform::threadHost().block(platform::Source::nothing, next, platform::Messages::held);
      if (connection_ && link_.simulate) {
        connection_->host().block(platform::Source::nothing, next, platform::Messages::held);
      }
    }
  }

  [[nodiscard]] Serial& serial() { return connection_->serial(); }

  const WatchOptions& options_;
  LinkOptions link_;
  Sections sections_;
  Log log_;
  std::shared_ptr<Connection> connection_;
  Lines known_;
  std::optional<ClockReading> clock_;  ///< the last one that was told
  SteadyClock::time_point clockTold_;
  SteadyClock::time_point start_ = SteadyClock::now();
  SteadyClock::time_point lastGood_;
  Seconds roundTime_{0};
  int rounds_ = 0;
};

int carryOutWatch(const WatchOptions& options) {
  options.check();
  Watch(options).run();
  return success;
}

}  // namespace

void addWatch(const CommandLine& velk, Job& job) {
  addCommand<WatchOptions>(
      velk, job, "watch", "Tell what changes in the configuration, and how the clock drifts",
      "  velk watch --tcp 192.168.1.20:8445\n"
      "  velk watch --simulate --only outputs,links --interval 60 --count 3\n"
      "  velk watch --link backup:house.json --json --for 3600\n"
      "\nThe whole configuration, or sections of it, is read in rounds, one request after the other. A line\n"
      "tells of each thing that has changed, with the time when that was seen, and of the clock when it\n"
      "deviates from the PC's by two seconds more or less than it did. With --json each line is an object.\n"
      "A pause as long as a round, or --interval if that is longer, leaves the line to others. A link that\n"
      "is lost is opened again. Ctrl-C ends it, with exit status 0; so do --for and --count.\n",
      carryOutWatch);
}

}  // namespace velk::cli
