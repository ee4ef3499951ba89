#pragma once

#include <optional>
#include <string>

#include "link/frames.h"
#include "simulator/controller.h"

namespace velk::cli {

/// A memory request that holds its data.
struct TracedRequest {
  Byte command = 0;
  Byte high = 0;
  Byte low = 0;
  Bytes data = {};

  bool operator==(const TracedRequest&) const = default;

  [[nodiscard]] bool writes() const { return (command & link::write) != 0; }
  [[nodiscard]] std::size_t count() const { return link::dataCount(command); }
  [[nodiscard]] link::Address place() const { return addressAt(link::areaOf(command), high, low); }
  [[nodiscard]] std::string text() const;
};

/// A request and what came back for it.
struct Exchange {
  TracedRequest request;
  std::optional<simulator::Reply> reply;  ///< none: nothing, or nothing that is a reply
  bool late = false;                      ///< it came when nobody waited for it any more
};

/// What came back: "05", "ok", "status 7" or "no reply".
std::string textOf(const std::optional<simulator::Reply>& reply);

}  // namespace velk::cli
