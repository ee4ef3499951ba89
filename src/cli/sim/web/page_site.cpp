#include "cli/sim/web/page_site.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>

#include "cli/sim/web/house_json.h"
#include "memory/map.h"
#include "values/hex.h"

namespace velk::cli::web {
namespace {

constexpr std::uint64_t small = 4096;
constexpr std::uint64_t wholeHouse = 4U << 20U;

HttpAnswer ok(const Json& json) {
  return {.body = json.dump() + "\n", .fileName = {}};
}

HttpAnswer done() {
  return ok({{"done", true}});
}

Json parsed(const std::string& body) {
  std::istringstream in(body);
  return Json::parse(in);
}

/// "V 0540".
Address addressIn(const std::string& text) {
  const auto blank = text.find(' ');
  const auto* const area = std::find(link::areaNames.begin(), link::areaNames.end(), text.substr(0, blank));
  const auto digits = blank == std::string::npos ? std::string() : text.substr(blank + 1);
  constexpr std::size_t size = 4;
  const auto page = byteOfHex(digits.substr(0, 2));
  const auto offset = digits.size() == size ? byteOfHex(digits.substr(2)) : std::nullopt;
  if (area == link::areaNames.end() || !page || !offset) {
    throw std::invalid_argument("An address is an area and four digits, for example \"V 0540\".");
  }
  return {.area = static_cast<Area>(area - link::areaNames.begin()), .page = *page, .offset = *offset};
}

/// What may be changed by hand: configuration, and the clock.
bool isChangeable(Address at) {
  constexpr Byte clockPage = 255;
  constexpr Byte clockOffset = 247;
  const bool isClock = at.area == Area::external && at.page == clockPage && at.offset >= clockOffset;
  return isClock || memory::thingAt(at).has_value();
}

void requireChangeable(Address first, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Address at = first.next(i);
    // A transfer goes on at the start of the page or of the memory, where nobody means it to.
    if (at < first) {
      throw std::invalid_argument("The " + std::to_string(count) + " bytes from " + keyOf(first) +
                                  " run over the end of the " + (isExternal(at.area) ? "area." : "page."));
    }
    if (!isChangeable(at)) {
      throw std::invalid_argument("Nothing that can be changed lies at " + keyOf(at) + ".");
    }
  }
}

Json kindsOfFaults() {
  Json list = Json::array();
  for (const auto& kind : simulator::faultKinds()) {
    list.push_back({{"name", kind.name},
                    {"argument", kind.argument},
                    {"fallback", kind.fallback},
                    {"highest", kind.highest},
                    {"help", kind.help},
                    {"modules", kind.counts == simulator::Counts::moduleRequests}});
  }
  return list;
}

}  // namespace

struct PageSite::Route {
  std::string_view method;
  std::string_view target;
  std::uint64_t longestBody;
  HttpAnswer (PageSite::*answer)(const std::string& body);
};

const PageSite::Route* PageSite::routeOf(std::string_view method, std::string_view target) {
  static constexpr std::array routes{
      Route{"GET", "/", 0, &PageSite::page},
      Route{"GET", "/api/events", 0, &PageSite::stream},
      Route{"GET", "/api/description", 0, &PageSite::description},
      Route{"GET", "/api/house", 0, &PageSite::houseNow},
      Route{"GET", "/api/memory", 0, &PageSite::memory},
      Route{"GET", "/api/backup", 0, &PageSite::saveHouse},
      Route{"POST", "/api/backup", wholeHouse, &PageSite::loadHouse},
      Route{"POST", "/api/write", small, &PageSite::write},
      Route{"POST", "/api/faults", small, &PageSite::setFault},
      Route{"POST", "/api/faults/take-back", small, &PageSite::takeFaultBack},
      Route{"POST", "/api/faults/take-all-back", small, &PageSite::takeAllFaultsBack},
  };
  const auto* found = std::find_if(routes.begin(), routes.end(), [&](const Route& route) {
    return route.target == target && (method.empty() || route.method == method);
  });
  return found == routes.end() ? nullptr : found;
}

std::uint64_t PageSite::longestBody(std::string_view method, std::string_view target) const {
  const Route* const route = routeOf(method, target);
  return route == nullptr ? 0 : route->longestBody;
}

HttpAnswer PageSite::answer(const HttpRequest& request) {
  const Route* const route = routeOf(request.method, request.target);
  if (route == nullptr && routeOf({}, request.target) != nullptr) {
    return httpError(405, "This does not go with " + request.method + ".");
  }
  if (route == nullptr) return httpError(404, "There is nothing at " + request.target + ".");
  try {
    return (this->*route->answer)(request.body);
  } catch (const std::invalid_argument& error) {
    return httpError(400, error.what());
  }
}

std::string PageSite::missed(std::uint64_t requests) const {
  return eventText("trace", {{"missed", requests}, {"rows", Json::array()}}) +
         eventText("hello", Json::object());
}

HttpAnswer PageSite::page(const std::string& /*body*/) {
  return {.type = "text/html; charset=utf-8", .body = std::string(pageText()), .fileName = {}};
}

HttpAnswer PageSite::stream(const std::string& /*body*/) {
  return {.type = "text/event-stream", .body = {}, .fileName = {}, .isEvents = true};
}

HttpAnswer PageSite::description(const std::string& /*body*/) {
  return ok({{"version", VELK_VERSION},
             {"started", started_},
             {"interfaces", places_},
             {"faultKinds", kindsOfFaults()},
             {"things", jsonOfThings()}});
}

HttpAnswer PageSite::houseNow(const std::string& /*body*/) {
  Json json = jsonOf(house_.state());
  json["faults"] = feed_.faults();
  json["connected"] = feed_.connections();
  return ok(json);
}

HttpAnswer PageSite::memory(const std::string& /*body*/) {
  simulator::Store store;
  house_.copyMemory(store);
  return ok(linesOf(store));
}

HttpAnswer PageSite::saveHouse(const std::string& /*body*/) {
  return {.body = textOf(house_.saved()), .fileName = "house.json"};
}

HttpAnswer PageSite::loadHouse(const std::string& body) {
  Backup backup = parseBackup(body);
  if (!backup.complete) return httpError(400, "The backup is unfinished.");
  const std::string condition = backup.condition == Condition::intact ? "" : textOf(backup.condition);
  house_.load(std::move(backup));
  feed_.houseLoaded();
  return ok({{"done", true}, {"remark", condition}});
}

HttpAnswer PageSite::write(const std::string& body) {
  const Json json = parsed(body);
  const Address at = addressIn(json.at("at").get<std::string>());
  const Bytes bytes = bytesOfHex(json.at("bytes").get<std::string>());
  if (bytes.empty() || bytes.size() > lineSize) {
    throw std::invalid_argument("1 to 16 bytes can be written at once.");
  }
  requireChangeable(at, bytes.size());
  const auto request = link::writeRequest(static_cast<Byte>(bytes.size()), at, bytes);
  const simulator::Reply reply = house_.controller().answer(request);
  watch_.log.add(simulator::LoggedRequest::of(simulator::noConnection, request, reply));
  return done();
}

HttpAnswer PageSite::setFault(const std::string& body) {
  return ok({{"id", watch_.faults.set(parsed(body).at("fault").get<std::string>())}});
}

HttpAnswer PageSite::takeFaultBack(const std::string& body) {
  const auto id = parsed(body).at("id").get<unsigned>();
  if (watch_.faults.takeBack(id)) return done();
  return httpError(404, watch_.faults.wasSet(id) ? "This fault is over already."
                                                 : "There is no fault " + std::to_string(id) + ".");
}

HttpAnswer PageSite::takeAllFaultsBack(const std::string& /*body*/) {
  watch_.faults.takeAllBack();
  return done();
}

}  // namespace velk::cli::web
