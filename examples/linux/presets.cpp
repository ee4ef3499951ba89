// Lists the presets of a controller that have a text.
//   presets HOST PORT PASSWORD
//   presets DEVICE              a serial line in echo mode, such as /dev/ttyUSB0

#include <velkcom/result_codes.h>
#include <velkcom/serial.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

velk::Byte open(velk::Serial& serial, int count, char** words) {
  if (count == 1) {
    velk::platform::mapPort(1, words[0]);
    return serial.OpenCom(1);
  }
  // A port above 32767 is passed as a negative number, as automation hosts have to.
  return serial.OpenTCP(words[0], static_cast<std::int16_t>(std::atoi(words[1])), std::string(words[2]));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 4) {
    std::fprintf(stderr, "usage: presets HOST PORT PASSWORD | presets DEVICE\n");
    return 2;
  }
  velk::Serial serial;
  velk::Byte result = open(serial, argc - 1, argv + 1);
  for (int number = 1; result == 0 && number <= 92; ++number) {
    std::string text;
    velk::Bytes records;
    velk::Byte delay1 = 0;
    velk::Byte delay2 = 0;
    // Up to record 3, the first: this asks for the text and the delays rather than for all records.
    result = serial.Preset("R", static_cast<velk::Byte>(number), text, 3, records, delay1, delay2);
    if (text.find_first_not_of(std::string("\0 \xff", 3)) == std::string::npos) continue;
    std::printf("%2d  %s  delays %d, %d\n", number, text.c_str(), delay1, delay2);
  }
  if (result != 0) std::fprintf(stderr, "presets: %s\n", velk::meaningOf(result).c_str());
  return result == 0 ? 0 : 1;
}
