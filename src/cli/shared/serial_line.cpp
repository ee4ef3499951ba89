#include "cli/shared/serial_line.h"

#include <algorithm>

#include "platform/host.h"
#include "values/runtime_error.h"

namespace velk::cli {
namespace {

/// A port cannot be woken: so long it may keep the thread that stops.
constexpr std::chrono::milliseconds stopInterval{100};

class DeviceStream final : public Stream {
 public:
  explicit DeviceStream(platform::Host& host) : host_(host) {}
  ~DeviceStream() override {
    if (host_.port().isOpen()) host_.port().close();
  }
  DeviceStream(const DeviceStream&) = delete;
  DeviceStream& operator=(const DeviceStream&) = delete;

  std::optional<Bytes> receive(std::chrono::milliseconds longest) override {
    host_.block(platform::Source::port, std::min(longest, stopInterval), platform::Messages::held);
    try {
      return Bytes(host_.port().read());
    } catch (const RuntimeError&) {
      return std::nullopt;
    }
  }

  void send(std::string_view bytes) override {
    try {
      host_.port().write(bytes);
    } catch (const RuntimeError&) {  // NOLINT(bugprone-empty-catch): a line loses what nobody takes
    }
  }

 private:
  platform::Host& host_;
};

}  // namespace

std::unique_ptr<Stream> openDevice(const std::string& device, int baud) {
  platform::Host& host = platform::threadHost();
  host.port().open(portNumber(device), {.baud = baud});
  return std::make_unique<DeviceStream>(host);
}

}  // namespace velk::cli
