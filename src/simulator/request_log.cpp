#include "simulator/request_log.h"

#include <algorithm>

#include "simulator/trace.h"

namespace velk::simulator {
namespace {

Byte copyTo(std::array<char, LoggedRequest::longest>& place, std::string_view bytes) {
  return static_cast<Byte>(bytes.copy(place.data(), place.size()));
}

}  // namespace

LoggedRequest LoggedRequest::of(unsigned connection, const link::Request& request, const Reply& reply,
                                const Plan& plan) {
  LoggedRequest logged{.at = std::chrono::system_clock::now(),
                       .connection = connection,
                       .command = request.command,
                       .high = request.high,
                       .low = request.low,
                       .status = reply.status,
                       .faultyReply = isFaulty(plan) ? withFaults(describe(reply), plan) : "",
                       .note = {}};
  logged.size = copyTo(logged.data, request.data);
  logged.replySize = copyTo(logged.reply, reply.data);
  return logged;
}

LoggedRequest LoggedRequest::ofNote(unsigned connection, std::string note) {
  LoggedRequest logged;
  logged.at = std::chrono::system_clock::now();
  logged.connection = connection;
  logged.note = std::move(note);
  return logged;
}

link::Request LoggedRequest::request() const {
  return {.command = command, .high = high, .low = low, .data = std::string_view(data.data(), size)};
}

Reply LoggedRequest::answer() const {
  return {.status = status, .data = Bytes(reply.data(), replySize)};
}

void RequestLog::add(LoggedRequest request) {
  const std::lock_guard lock(mutex_);
  ring_[count_++ % capacity] = std::move(request);
}

std::uint64_t RequestLog::count() const {
  const std::lock_guard lock(mutex_);
  return count_;
}

RequestLog::Batch RequestLog::take(std::uint64_t& next, std::size_t most) const {
  const std::lock_guard lock(mutex_);
  const std::uint64_t waiting = count_ - std::min(next, count_);
  const auto taken = std::min<std::uint64_t>({waiting, most, capacity});
  Batch batch{.first = count_ - taken, .requests = {}, .missed = waiting - taken};
  batch.requests.reserve(static_cast<std::size_t>(taken));
  for (std::uint64_t i = batch.first; i < count_; ++i) batch.requests.push_back(ring_[i % capacity]);
  next = count_;
  return batch;
}

}  // namespace velk::simulator
