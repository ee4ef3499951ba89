#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/sim/served_house.h"
#include "cli/sim/web/change_feed.h"
#include "cli/sim/web/http.h"
#include "simulator/watch.h"

namespace velk::cli::web {

/// The simulator's page and what it asks for: docs/simulator.md. What is wrong is answered with an error and a
/// sentence, and changes nothing.
class PageSite final : public Site {
 public:
  /// `places` are the interfaces that are served, as people read them.
  PageSite(ServedHouse& house, simulator::Watch& watch, std::vector<std::string> places)
      : house_(house), watch_(watch), places_(std::move(places)), feed_(house, watch) {}

  [[nodiscard]] std::uint64_t longestBody(std::string_view method, std::string_view target) const override;
  HttpAnswer answer(const HttpRequest& request) override;
  void begin() override { feed_.begin(); }
  HttpEvents events() override { return feed_.next(); }
  [[nodiscard]] std::string missed(std::uint64_t requests) const override;

 private:
  struct Route;
  static const Route* routeOf(std::string_view method, std::string_view target);

  HttpAnswer page(const std::string& body);
  HttpAnswer stream(const std::string& body);
  HttpAnswer description(const std::string& body);
  HttpAnswer houseNow(const std::string& body);
  HttpAnswer memory(const std::string& body);
  HttpAnswer saveHouse(const std::string& body);
  HttpAnswer loadHouse(const std::string& body);
  HttpAnswer write(const std::string& body);
  HttpAnswer setFault(const std::string& body);
  HttpAnswer takeFaultBack(const std::string& body);
  HttpAnswer takeAllFaultsBack(const std::string& body);

  ServedHouse& house_;
  simulator::Watch& watch_;
  std::vector<std::string> places_;
  std::int64_t started_ = std::chrono::system_clock::now().time_since_epoch().count();
  ChangeFeed feed_;
};

/// The text of the page.
std::string_view pageText();

}  // namespace velk::cli::web
