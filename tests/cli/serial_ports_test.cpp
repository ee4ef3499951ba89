#include "cli/velk/connection/posix/serial_ports.h"

#include <gtest/gtest.h>

#include "cli/tool.h"

namespace velk::cli {
namespace {

/// A system with a console, two adapters, a plain port and one in name only.
TEST(SerialPorts, TellsWhatTheSystemKnowsOfEach) {
  const Folder folder;
  shell("cd " + folder.path + R"( && mkdir -p sys/class/tty sys/drivers/serial8250 sys/drivers/ftdi_sio \
    dev/serial/by-id sys/devices/virtual/tty0 sys/devices/plain/tty/ttyS0 sys/devices/plain/tty/ttyS1 \
    sys/devices/usb/1-2/1-2:1.0/ttyUSB10/tty sys/devices/usb/1-2/1-2:1.0/ttyUSB9/tty;
    cd sys/devices/usb/1-2; echo 0403 >idVendor; echo 6001 >idProduct; echo FTDI >manufacturer; echo UART >product;
    echo A5 >serial; for n in 9 10; do p=$PWD/1-2:1.0/ttyUSB$n; ln -s ../../../../../drivers/ftdi_sio $p/driver;
    mkdir $p/tty/ttyUSB$n; ln -s ../.. $p/tty/ttyUSB$n/device; ln -s $p/tty/ttyUSB$n ../../../class/tty/; done;
    cd ../../plain; ln -s ../../drivers/serial8250 driver; for n in 0 1; do ln -s ../.. tty/ttyS$n/device;
    echo $((n * 4)) >tty/ttyS$n/type; ln -s $PWD/tty/ttyS$n ../../class/tty/; done;
    ln -s ../../devices/virtual/tty0 ../../class/tty/; ln -s ../../ttyUSB9 ../../../dev/serial/by-id/usb-FTDI_A5)");
  std::string found;
  for (const SerialPortFacts& port : serialPortsBelow(folder.path)) {
    found += port.device + "|" + port.adapter + "|" + port.usb + "|" + port.serial + "|" + port.driver + "|" +
             port.stableName + "\n";
  }
  EXPECT_EQ(found,
            "/dev/ttyS1||||serial8250|\n"
            "/dev/ttyUSB9|FTDI UART|0403:6001|A5|ftdi_sio|/dev/serial/by-id/usb-FTDI_A5\n"
            "/dev/ttyUSB10|FTDI UART|0403:6001|A5|ftdi_sio|\n");
}

}  // namespace
}  // namespace velk::cli
