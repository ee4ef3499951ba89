#include "simulator/session.h"

namespace velk::simulator {

void append(Deliveries& out, Deliveries more) {
  for (Delivery& delivery : more) out.push_back(std::move(delivery));
}

Plan Session::nextPlan() {
  Plan plan = options_.faults.planFor(++requests_);
  if (options_.watch != nullptr) options_.watch->faults.next(Counts::requests, plan);
  return plan;
}

Plan Session::loginPlan() const {
  Plan plan = options_.faults.planFor(0);
  if (options_.watch != nullptr) options_.watch->faults.login(plan);
  return plan;
}

void Session::note(const std::string& line) const {
  if (options_.trace) options_.trace(line);
  if (options_.watch != nullptr) options_.watch->log.add(LoggedRequest::ofNote(connection_->id, line));
}

Reply Session::answer(const link::Request& request, const Plan& plan) {
  Reply reply = plan.status ? refusal(request, *plan.status) : controller_.answer(request);
  if (options_.trace) {
    options_.trace(describe(request) + " -> " + withFaults(describe(reply), plan));
  }
  if (options_.watch != nullptr) {
    connection_->requests.fetch_add(1, std::memory_order_relaxed);
    options_.watch->log.add(LoggedRequest::of(connection_->id, request, reply, plan));
  }
  return reply;
}

Deliveries Session::deliver(const Plan& plan, Bytes reply, std::string_view foreign) {
  if (plan.disconnect) return {{.bytes = {}, .after = plan.late, .hangUp = true}};
  if (plan.silent) return {};
  if (plan.shortTo) reply.resize(std::min(reply.size(), *plan.shortTo));
  Bytes all;
  for (std::size_t i = 0; i < plan.foreign; ++i) all += foreign;
  all += reply;
  if (all.empty()) return {};
  return {{.bytes = std::move(all), .after = plan.late}};
}

Deliveries BufferedSession::received(std::string_view bytes) {
  Deliveries out;
  buffer_ += bytes;
  while (!buffer_.empty()) {
    const auto taken = take(buffer_, out);
    if (!taken) break;
    buffer_.erase(0, *taken);
  }
  return out;
}

link::Request requestFrom(std::string_view text) {
  return {
      .command = byteAt(text, 0), .high = byteAt(text, 1), .low = byteAt(text, 2), .data = text.substr(3)};
}

}  // namespace velk::simulator
