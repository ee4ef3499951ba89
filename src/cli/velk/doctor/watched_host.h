#pragma once

#include <chrono>
#include <optional>

#include "platform/host.h"

namespace velk::cli {

/// Another host that notes when its socket gets on, in milliseconds since this object was made.
class WatchedHost final : public platform::Host {
 public:
  explicit WatchedHost(platform::Host& host) : host_(host), start_(host.steady()) {}

  float clock() override { return host_.clock(); }
  std::chrono::nanoseconds steady() override { return host_.steady(); }
  void yield() override { host_.yield(); }
  platform::SerialPort& port() override { return host_.port(); }
  platform::Socket& socket() override { return host_.socket(); }
  void block(platform::Source source, std::chrono::nanoseconds longest,
             platform::Messages messages) override {
    look();
    host_.block(source, longest, messages);
    look();
  }

  [[nodiscard]] std::optional<double> foundAfter() const { return found_; }
  [[nodiscard]] std::optional<double> connectedAfter() const { return connected_; }
  [[nodiscard]] std::optional<double> greetedAfter() const { return greeted_; }

 private:
  void look() {
    using Stage = platform::Reach::Stage;
    const Stage stage = host_.socket().reach().stage;
    note(found_, stage != Stage::lookingUp);
    note(connected_, stage == Stage::connected);
    note(greeted_, stage == Stage::connected && host_.socket().hasData());
  }
  void note(std::optional<double>& time, bool reached) {
    if (reached && !time) time = std::chrono::duration<double, std::milli>(host_.steady() - start_).count();
  }

  platform::Host& host_;
  const std::chrono::nanoseconds start_;
  std::optional<double> found_;
  std::optional<double> connected_;
  std::optional<double> greeted_;
};

}  // namespace velk::cli
