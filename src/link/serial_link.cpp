#include "link/serial_link.h"

#include "link/wait.h"
#include "values/numbers.h"
#include "values/runtime_error.h"

namespace velk::link {

void openCom(Link link, Byte number, std::int16_t baudrate, bool fastMode) {
  // Set before anything can fail, so that they stay set when the port does not open.
  link.settings.NoEcho = fastMode;
  link.settings.TCP = false;

  // The blank in front of the rate belongs to the settings text.
  const std::string settings = signedText(baudrate) + ",N,8,1";
  platform::SerialPort& port = link.host.port();
  port.open(number, platform::parseSettings(settings));
  try {
    pause(link.host, Seconds(0.5), platform::Messages::dispatched);
    port.read();
  } catch (const RuntimeError&) {
    if (port.isOpen()) port.close();
    throw;
  }
}

void closeCom(Link link) {
  link.host.port().close();
}

}  // namespace velk::link
