#include <algorithm>
#include <memory>

#include "cli/shared/amount.h"
#include "cli/shared/interrupts.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/commands/consent.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/trace/planned_writes.h"
#include "link/wait.h"
#include "simulator/mailbox.h"
#include "values/result.h"

namespace velk::cli {
namespace {

struct ReplayOptions : LinkedOptions {
  std::string file;
  bool writes = false;
  Consent consent;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("TRACE", file, "A trace; \"-\" is standard input").required();
    line.flag("--writes", writes, "Send the writes as well, after a question");
    consent.declare(line);
  }
};

/// A request whose answer is another one now.
struct ChangedAnswer {
  int line;
  std::string request;
  std::string from;
  std::string to;
};

/// What a replay came to.
struct ReplayAccount {
  std::size_t sent = 0;
  std::size_t written = 0;
  std::size_t notCompared = 0;
  std::size_t writesLeft = 0;  ///< not asked for
  std::vector<ChangedAnswer> changes;
  std::vector<OddLine> odd;
  std::size_t oddUntold = 0;  ///< of these
};

/// Requests that were lost and asked again count as the last one.
std::vector<TraceLine> withoutLost(const std::vector<TraceLine>& lines) {
  std::vector<TraceLine> kept;
  for (const TraceLine& line : lines) {
    const auto isLost = [](const Exchange& exchange) { return !exchange.reply || exchange.late; };
    const bool isAgain = !kept.empty() && isLost(kept.back().exchange) &&
                         kept.back().exchange.request == line.exchange.request;
    if (isAgain) kept.pop_back();
    kept.push_back(line);
  }
  return kept;
}

bool isEqual(const Exchange& then, const std::optional<simulator::Reply>& now) {
  return textOf(then.reply) == textOf(now);
}

template <class Test>
bool anyByte(const TracedRequest& request, Test test) {
  for (std::size_t i = 0; i < request.count(); ++i) {
    if (test(i, request.place().next(i))) return true;
  }
  return false;
}

/// Sends the requests of a trace through the component, and takes what comes back from the link itself: every
/// link tells the same there.
class Replay {
 public:
  Replay(Connection& connection, const std::shared_ptr<std::optional<Exchange>>& last)
      : connection_(connection), serial_(connection.serial()), last_(*last) {}

  /// What comes back now. Throws `Failure` when that is nothing, but something came when the trace was made.
  std::optional<simulator::Reply> ask(const TraceLine& line) {
    const Exchange& then = line.exchange;
    last_.reset();
    const auto send = [&] { return statusOf(sendOnce(then.request)); };
    const Byte result = then.reply ? carryOut(then.request, send) : send();
    if (then.request.writes() && result == 0) {
      waitForModule(then.request);
      return simulator::Reply{};
    }
    const bool isAnswered = last_ && last_->request == then.request && last_->reply && !last_->late;
    if (isAnswered) return last_->reply;
    if (then.reply) expectDone(result, "line " + std::to_string(line.number) + ": " + then.request.text());
    return std::nullopt;
  }

 private:
  Bytes sendOnce(const TracedRequest& request) {
    checkInterrupt();
    const link::Address at = request.place();
    constexpr std::size_t highBank = 128;
    const auto count = static_cast<Byte>(request.count() + (isHighBank(at.area) ? highBank : 0));
    const char* const direction = isExternal(at.area) ? "V" : "H";
    if ((request.command & link::shortReply) != 0)
      return serial_.TranCeiv(request.command, request.high, request.low, request.data);
    return request.writes() ? serial_.WriteCom(count, request.high, request.low, direction, request.data)
                            : serial_.ReadCom(count, request.high, request.low, direction);
  }

  static Byte statusOf(const Bytes& reply) {
    return reply.empty() ? Byte{noReply} : byteValue(reply.front());
  }

  /// With repetitions of what is lost; a status of the controller is not.
  template <class Send>
  Byte carryOut(const TracedRequest& request, Send send) {
    const auto isUnanswered = [&](Byte result) { return isLost(result) && !(last_ && last_->reply); };
    if (!request.writes()) return retry().read(send, isUnanswered);
    // The trigger of a module and the clock are not written twice.
    if (anyByte(request, [](std::size_t, Address at) { return isVolatile(at); })) return send();
    return retry().write(send, [&] {
      return readTransfer(serial_, request.place(), request.count(), "back what was written") == request.data;
    });
  }

  /// The trace tells how long a module took then, not how long it takes now.
  void waitForModule(const TracedRequest& request) {
    using simulator::triggerPlace;
    constexpr int polls = 50;
    if (request.place() != triggerPlace || request.data != Bytes(1, character(simulator::triggered))) return;
    for (int i = 0; i < polls; ++i) {
      link::pause(connection_.host(), link::Seconds(0.1), platform::Messages::held);
      if (readTransfer(serial_, triggerPlace, 1, "the trigger of the mailbox") == Bytes(1, '\0')) return;
    }
  }

  Connection& connection_;
  Serial& serial_;
  std::optional<Exchange>& last_;
};

/// Whether a reply has something to compare, and whether that is the same.
enum class Verdict : Byte { same, different, notCompared };

Verdict verdictOf(const Exchange& then, const std::optional<simulator::Reply>& now) {
  const bool bothGood = then.reply && now && then.reply->status == 0 && now->status == 0;
  if (!bothGood) return isEqual(then, now) ? Verdict::same : Verdict::different;
  const Bytes& before = then.reply->data;
  const Bytes& after = now->data;
  if (before.size() != after.size()) return Verdict::different;
  if (before.empty()) return Verdict::same;
  const TracedRequest& request = then.request;
  if (anyByte(request, [&](std::size_t i, Address at) { return before[i] != after[i] && !isVolatile(at); }))
    return Verdict::different;
  const bool counts = anyByte(request, [](std::size_t, Address at) { return !isVolatile(at); });
  return counts ? Verdict::same : Verdict::notCompared;
}

void print(const ChangedAnswer& change) {
  std::cout << "line " << change.line << ": " << change.request << ": " << change.from << " -> " << change.to
            << '\n'
            << std::flush;
}

/// The first few are told as they come.
void leaveOut(OddLine line, ReplayAccount& account) {
  constexpr std::size_t few = 10;
  if (account.odd.size() < few) {
    std::cerr << "velk: line " << line.number << " is left out: it " << line.why << '\n';
  } else {
    ++account.oddUntold;
  }
  account.odd.push_back(std::move(line));
}

void tellMoreLeftOut(const ReplayAccount& account) {
  if (account.oddUntold == 0) return;
  std::cerr << "velk: " << amount(account.oddUntold, "more line") << (account.oddUntold == 1 ? " is" : " are")
            << " left out\n";
}

void tellOutcome(const ReplayAccount& account) {
  std::cerr << "velk: " << amount(account.sent, "request") << " sent, " << account.changes.size()
            << " answered differently";
  if (account.notCompared != 0) {
    std::cerr << "; " << amount(account.notCompared, "answer")
              << " not compared: clock, mailbox and the like";
  }
  if (account.writesLeft != 0) {
    std::cerr << "; " << amount(account.writesLeft, "write") << " not sent: give --writes";
  }
  std::cerr << '\n';
}

Json jsonOf(const ReplayAccount& account, const PlannedWrites& planned) {
  Json json{{"sent", account.sent}, {"written", account.written}, {"not_compared", account.notCompared}};
  json["differences"] = Json::array();
  for (const ChangedAnswer& change : account.changes) {
    json["differences"].push_back(
        {{"line", change.line}, {"request", change.request}, {"from", change.from}, {"to", change.to}});
  }
  json["left_out"] = Json::array();
  for (const OddLine& line : account.odd)
    json["left_out"].push_back({{"line", line.number}, {"why", line.why}});
  json["things"] = jsonOf(planned.differences);
  json["other_writes"] = planned.others;
  return json;
}

/// The requests that are to be sent. Throws `Failure` when there are none.
std::vector<TraceLine> requestsOf(const ReplayOptions& options, ReplayAccount& account) {
  TraceText text = parseTrace(readFile(options.file));
  for (OddLine& line : text.odd) {
    if (text.isTrace) leaveOut(std::move(line), account);
  }
  std::vector<TraceLine> lines = withoutLost(text.requests);
  if (!options.writes) {
    account.writesLeft =
        std::erase_if(lines, [](const TraceLine& line) { return line.exchange.request.writes(); });
  }
  if (lines.empty() && account.writesLeft == 0) {
    tellMoreLeftOut(account);
    throw Failure(badFile, options.file + ": there is no request in it");
  }
  return lines;
}

/// Sends one; what a backup file does not hold is left out. False when nothing more may be sent.
bool sendOne(Replay& replay, const ReplayOptions& options, bool isFile, const TraceLine& line,
             ReplayAccount& account) {
  std::optional<simulator::Reply> now;
  try {
    now = replay.ask(line);
  } catch (const std::invalid_argument& why) {
    leaveOut({line.number, std::string("cannot be asked: ") + why.what()}, account);
    return true;
  } catch (const Failure& failure) {
    // The exit status 1 tells of differences and nothing else.
    if (failure.status != badResult) throw;
    if (!isFile) throw Failure(noLink, failure.what(), failure.result);
    leaveOut({line.number, std::string("cannot be asked: ") + failure.what()}, account);
    return true;
  }
  ++account.sent;
  const bool writes = line.exchange.request.writes();
  if (writes) ++account.written;
  const Verdict verdict = verdictOf(line.exchange, now);
  if (verdict == Verdict::notCompared) ++account.notCompared;
  if (verdict != Verdict::different) return true;
  account.changes.push_back(
      {line.number, line.exchange.request.text(), textOf(line.exchange.reply), textOf(now)});
  if (!options.json) print(account.changes.back());
  if (!writes) return true;
  std::cerr << "velk: stopped: what follows this write is not sent\n";
  return false;
}

/// Shows what would be written, and whether to do it.
bool isAgreed(const ReplayOptions& options, const PlannedWrites& planned) {
  if (!options.json) {
    for (const Difference& difference : planned.differences) std::cout << textOf(difference) << '\n';
    for (const std::string& other : planned.others) std::cout << other << '\n';
    std::cout << std::flush;
  }
  if (planned.differences.empty() && planned.others.empty()) {
    std::cerr << "velk: the writes of the trace change nothing\n";
    return true;
  }
  return options.consent.dryRun || options.consent.covers();
}

int carryOutReplay(const ReplayOptions& options) {
  ReplayAccount account;
  LinkOptions link = options.link.required();
  const std::vector<TraceLine> lines = requestsOf(options, account);
  if (options.writes) options.consent.expectSomebody();
  const auto last = std::make_shared<std::optional<Exchange>>();
  link.listener = [last](const WireEvent& event) {
    if (event.exchange) *last = event.exchange;
  };
  const auto connection = open(link);
  watchInterrupts();
  PlannedWrites planned;
  if (options.writes) {
    Serial& serial = connection->serial();
    if (!options.consent.covers(options.file, strangenessOf(serial, lines), "sends its writes"))
      return badResult;
    planned = planWrites(serial, lines);
    if (!isAgreed(options, planned)) return badResult;
  }
  Replay replay(*connection, last);
  const bool sends = !(options.writes && options.consent.dryRun);
  for (const TraceLine& line : lines) {
    if (!sends || !sendOne(replay, options, !link.backup.empty(), line, account)) break;
  }
  tellMoreLeftOut(account);
  if (sends) tellOutcome(account);
  if (options.json) std::cout << jsonOf(account, planned) << '\n';
  return account.changes.empty() ? success : badResult;
}

}  // namespace

void addReplay(const CommandLine& velk, Job& job) {
  addCommand<ReplayOptions>(
      velk, job, "replay", "Send the requests of a trace again and tell what is answered differently",
      "  velk outputs --simulate --trace=outputs.trace\n"
      "  velk replay --simulate outputs.trace\n"
      "  velk replay --simulate outputs.trace --writes --dry-run\n"
      "\nTRACE is what --trace has written over any link, or what velk-sim --trace has printed. The reads "
      "are\n"
      "sent, one line tells of each that is answered differently, and the exit status is 1 then. What "
      "changes\n"
      "by itself, such as the clock and the mailbox of modules, is not compared. With --writes all is sent "
      "in\n"
      "its order: what would change is shown first, and asked about; a controller that looks like another\n"
      "house is not written to without --other-house. It ends with the first write that is answered\n"
      "differently. Attempts that were repeated count once. Lines that are not understood are told, the "
      "first ten\n"
      "of them by their numbers.\n",
      carryOutReplay);
}

}  // namespace velk::cli
