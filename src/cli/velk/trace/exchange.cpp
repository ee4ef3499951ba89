#include "cli/velk/trace/exchange.h"

#include "simulator/trace.h"

namespace velk::cli {

std::string TracedRequest::text() const {
  return simulator::describe(link::Request{.command = command, .high = high, .low = low, .data = data});
}

std::string textOf(const std::optional<simulator::Reply>& reply) {
  return reply ? simulator::describe(*reply) : "no reply";
}

}  // namespace velk::cli
