#include <algorithm>
#include <array>

#include "cli/shared/wrap.h"
#include "cli/velk/commands/command.h"

namespace velk::cli {
namespace {

struct Topic {
  const char* name;
  const char* text;
};

constexpr std::array topicTable{
    Topic{"texts",
          R"(Texts:
Words are UTF-8. In the controller each character is one byte, U+0000 to U+00FF; a text with any other
is refused. \xNN is a byte, \\ a backslash. Names are shown as they were typed, other bytes as \xNN;
"velk call" shows data in ASCII alone.
)"},
    Topic{"changes",
          R"(Changes:
Commands that change a thing in words show what was and what will be, write it, read it back and tell so.
--dry-run writes nothing. With --json the thing is printed as it is then, with what changed. "velk apply"
carries out many of them, from a file.
An output is its number, 1 to 99, or its name. The beginning of a name is enough when no other name begins
so; capitals do not count. When several fit they are listed, and nothing is done. A name has up to 16
characters and lies in a place chosen for it; a controller may keep something else there.
An item of an output is its number or its place, as "velk output N" shows them; where a number is one item's
and another's place, item:4 or place:4 tells which.
Days are Mon, Mon-Fri, Sat,Sun, weekdays, weekend or daily. In a switch time an output, 3 to 99, is followed
by the two bytes that it is told, 0 to 255 each: "Hall=255:2". 101.1 to 124.4 is an action, which stands
alone. A switch time has room for 17 outputs, the last one for 14.
In a preset a record, 3 to 99 as outputs are, has four bytes, 0 or 2 to 255 each: "Hall=7:0:4:2"; 0:0:0:0 is
none. "velk preset copy" copies what stands there, also a byte of 1. A preset that is cleared has blanks for
a text, and zeros.
A link has two numbers, 0 to 15 each, and edges: "velk link 30.0 set output hall 3,10 rising". One to an
input, 1 to 127, has no edges, and the second number alone, from input 101 on.
Recorded events are replaced by days and hour: "velk simulation Mon-Fri 07 set 07:15:30 hall=0:2". An hour has
room for 51.
)"},
    Topic{"houses",
          R"(Houses:
In the configuration file, ~/.config/velk/config.toml ($XDG_CONFIG_HOME/velk/config.toml; on Windows
%APPDATA%\velk\config.toml), each section is a house, which --house names:
  [cottage]
  link = "tcp://192.168.1.20:8445"
  address = 2
  password-file = "cottage.password"
The address and the password may be left out, or stand in the link's text. The first line of the password's
file is the password; it lies beside the configuration file unless it has a folder. In its place may stand
password = "1234". In texts \\ is a backslash and \x23 a #. When a file with a password may be read by
others, velk says so. A password that is missing is asked for on a terminal.
)"},
    Topic{"connecting",
          R"(Links that do not open:
velk says why: no such host or device, no permission (and the group to join), open in another program (and
in which, where the system tells), refused, nobody answers, something answers that is no interface. When the
first request on a serial line is lost, it asks in the other mode, too, and says whether --fast has to be
given or left out.
)"},
    Topic{"traces",
          R"(Traces:
--trace=FILE, or --trace alone for standard error, writes what goes over a link, a line a request, like
velk-sim --trace. An example is
  12.5   4.3  read  1 V 0501  output 5, mode -> 05
In front stand the milliseconds since the link was opened, which the head tells, and those until the reply
was there. Behind the bytes, the area, the address and, in a write, the data stands what lies there; behind
the arrow what came: data, ok, a status other than 0, "no reply", or bytes that are none. What ends
with (late) came when nobody waited any more. Each attempt has a line. Of a login the outcome alone is told:
a trace holds no password. A file that is there is replaced when it is a trace, and nothing else is.
"velk replay" sends the requests of a trace again.
)"},
    Topic{"lost-requests",
          R"(Lost requests:
A read that gets no answer, or no answer of its own, is repeated up to three times. A write is repeated
likewise, but not before what stands in the controller was read. What asks a module, and setting the clock,
is never repeated, nor is what "velk call" does. Between two requests lies a second, in which a late answer
is dropped. How many were repeated is told at the end.
)"},
};

std::string helpOf(const CommandLine& velk, const std::string& name) {
  const auto* const topic =
      std::find_if(topicTable.begin(), topicTable.end(), [&](const Topic& row) { return name == row.name; });
  return topic != topicTable.end() ? wrapped(topic->text, readableWidth()) : velk.helpOf(name);
}

struct HelpOptions {
  std::string command;

  void declare(const CommandLine& line) {
    line.option("COMMAND", command,
                "A command, or one of texts, changes, houses, connecting, traces\nand lost-requests")
        .typeName("COMMAND");
  }
};

}  // namespace

void addHelp(const CommandLine& velk, Job& job) {
  addCommand<HelpOptions>(velk, job, "help", "Tell what a command does, and its options",
                          "  velk help\n  velk help restore\n", [&velk](const HelpOptions& options) {
                            std::cout << helpOf(velk, options.command);
                            return success;
                          });
}

std::string onlyCommandOf(const std::string& firstWord) {
  constexpr std::array<std::string_view, 3> lookAtAll{"help", "manual", "complete"};
  const bool isNone = firstWord.starts_with("-") ||
                      std::find(lookAtAll.begin(), lookAtAll.end(), firstWord) != lookAtAll.end();
  return isNone ? "" : firstWord;
}

std::string topics() {
  std::string text;
  for (const Topic& topic : topicTable) text.append("\n").append(topic.text);
  return text;
}

}  // namespace velk::cli
