#include "cli/sim/web/change_feed.h"

#include <algorithm>

#include "cli/sim/web/house_json.h"
#include "simulator/trace.h"

namespace velk::cli::web {
namespace {

using simulator::LoggedRequest;
using std::chrono::steady_clock;

constexpr double toldPerSecond = 1500;
constexpr double toldAtOnce = 2000;
constexpr std::uint64_t toldAtTheBegin = 100;

std::int64_t milliseconds(std::chrono::system_clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

std::string member(std::string_view name, std::int64_t value) {
  return ",\"" + std::string(name) + "\":" + std::to_string(value);
}

std::string member(std::string_view name, std::string_view text) {
  return ",\"" + std::string(name) + "\":" + Json(text).dump();
}

/// A request as JSON. Written here, since there are many: values of `Json` would take five times as long.
std::string rowOf(std::uint64_t number, const LoggedRequest& logged) {
  std::string row = "{\"n\":" + std::to_string(number) + member("t", milliseconds(logged.at)) +
                    member("c", logged.connection);
  if (!logged.note.empty()) return row + member("q", logged.note) + "}";
  const link::Request request = logged.request();
  const link::Address at = link::addressAt(link::areaOf(request.command), request.high, request.low);
  row += member("q", simulator::describe(request));
  const bool isFaulty = !logged.faultyReply.empty();
  row += member("r", isFaulty ? logged.faultyReply : simulator::describe(logged.answer()));
  row += member("f", isFaulty || logged.status != simulator::carriedOut ? 1 : 0);
  row += member("w", (request.command & link::write) != 0 ? 1 : 0);
  row += member("a", nameOf(at.area)) + member("p", at.page) + member("o", at.offset);
  return row + member("k", static_cast<std::int64_t>(link::dataCount(request.command))) + "}";
}

}  // namespace

std::string eventText(std::string_view name, const Json& data) {
  return "event: " + std::string(name) + "\ndata: " + data.dump() + "\n\n";
}

void ChangeFeed::begin() {
  house_.copyMemory(before_);
  const std::uint64_t count = watch_.log.count();
  nextRequest_ = count - std::min(count, toldAtTheBegin);
  allowance_ = toldAtOnce;
  last_ = steady_clock::now();
  toldFaults_.clear();
  toldConnections_.clear();
  connectionsTold_ = {};
}

HttpEvents ChangeFeed::next() {
  HttpEvents events;
  tellRequests(events);
  tellMemory(events);
  tellLists(events);
  return events;
}

void ChangeFeed::tellRequests(HttpEvents& events) {
  const auto now = steady_clock::now();
  const double passed = std::chrono::duration<double>(now - last_).count();
  last_ = now;
  allowance_ = std::min(allowance_ + passed * toldPerSecond, toldAtOnce);
  const auto batch = watch_.log.take(nextRequest_, static_cast<std::size_t>(allowance_));
  allowance_ -= static_cast<double>(batch.requests.size());
  if (batch.requests.empty() && batch.missed == 0) return;
  events.text += "event: trace\ndata: {\"missed\":" + std::to_string(batch.missed) + ",\"rows\":[";
  std::uint64_t number = batch.first;
  for (const LoggedRequest& logged : batch.requests) {
    if (number != batch.first) events.text += ',';
    events.text += rowOf(++number, logged);
  }
  events.text += "]}\n\n";
  events.requests = batch.missed + batch.requests.size();
}

void ChangeFeed::tellMemory(HttpEvents& events) {
  house_.copyMemory(now_);
  const Json lines = changedLines(before_, now_);
  if (!lines.items().empty()) events.text += eventText("memory", lines);
  std::swap(before_, now_);
  if (std::exchange(isLoaded_, false)) events.text += eventText("house", Json::object());
}

void ChangeFeed::tellLists(HttpEvents& events) {
  const auto tell = [&](std::string_view name, std::string& told, const Json& json) {
    std::string text = eventText(name, json);
    if (text == told) return;
    events.text += text;
    told = std::move(text);
  };
  tell("faults", toldFaults_, faults());
  constexpr std::chrono::seconds pause{1};
  if (steady_clock::now() - connectionsTold_ < pause) return;
  connectionsTold_ = steady_clock::now();
  tell("connections", toldConnections_, connections());
}

Json ChangeFeed::faults() const {
  Json list = Json::array();
  for (const auto& entry : watch_.faults.list()) {
    list.push_back(
        {{"id", entry.id}, {"fault", entry.text}, {"counts", entry.counts}, {"counted", entry.counted}});
  }
  return list;
}

Json ChangeFeed::connections() const {
  constexpr std::size_t most = 50;
  const auto present = watch_.connections.list();
  Json list = Json::array();
  for (const auto& one : present) {
    if (list.elements().size() == most) break;
    list.push_back({{"id", one->id},
                    {"interface", one->interface},
                    {"since", milliseconds(one->since)},
                    {"requests", one->requests.load()}});
  }
  return {{"count", present.size()}, {"connections", std::move(list)}};
}

}  // namespace velk::cli::web
