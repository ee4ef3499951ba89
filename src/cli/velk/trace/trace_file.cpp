#include "cli/velk/trace/trace_file.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include "cli/house/backup_file.h"
#include "cli/shared/failure.h"
#include "cli/shared/terminal.h"
#include "values/digits.h"
#include "values/hex.h"

namespace velk::cli {
namespace {

constexpr std::string_view mark = "# velk trace";
constexpr std::string_view arrow = " -> ";

std::string milliseconds(std::chrono::nanoseconds time) {
  const auto tenths = time.count() / 100'000;
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::string rightAligned(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

// --- Reading

/// What velk and velk-sim print besides requests to the memory.
constexpr auto others = std::to_array<std::string_view>({"#",
                                                         "connect to ",
                                                         "open at ",
                                                         "close",
                                                         "greeting ",
                                                         "login ",
                                                         "line break",
                                                         "the connection has ended",
                                                         "sent ",
                                                         "stray ",
                                                         "error: ",
                                                         "function ",
                                                         "module ",
                                                         "no memory request",
                                                         "not logged in",
                                                         "tcp Q ",
                                                         "tcp S ",
                                                         "echo ",
                                                         "fast ",
                                                         "ready",
                                                         "velk: ",
                                                         "velk-sim: "});

/// Takes the next word off a text, and the blanks in front of it.
std::string_view word(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const auto end = std::min(text.find(' '), text.size());
  const std::string_view found = text.substr(0, end);
  text.remove_prefix(end);
  return found;
}

bool isTime(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos;
}

[[noreturn]] void fail(const std::string& why) {
  throw std::invalid_argument(why);
}

Byte parseHex(std::string_view digits) {
  const auto byte = byteOfHex(digits);
  if (!byte) fail("has \"" + std::string(digits) + "\" where two hexadecimal digits stand");
  return *byte;
}

Bytes parseData(std::string_view text) {
  Bytes bytes;
  for (std::string_view next = word(text); !next.empty(); next = word(text))
    bytes += character(parseHex(next));
  return bytes;
}

link::Area parseArea(std::string_view name) {
  const auto* const found = std::find(link::areaNames.begin(), link::areaNames.end(), name);
  if (found == link::areaNames.end()) fail("names no area");
  return static_cast<link::Area>(found - link::areaNames.begin());
}

/// The text in front of the arrow: "write 1 V 0501 05  output 5, mode".
TracedRequest parseRequest(std::string_view text) {
  constexpr int most = 16;
  const bool writes = word(text) == "write";
  const auto count = wholeNumber<int>(word(text));
  if (!count || *count < 1 || *count > most) fail("names no number of bytes");
  const link::Area area = parseArea(word(text));
  const std::string_view address = word(text);
  if (address.size() != 4) fail("names no address");
  TracedRequest request{.command = link::commandByte(static_cast<Byte>(*count), area),
                        .high = parseHex(address.substr(0, 2)),
                        .low = parseHex(address.substr(2))};
  if (writes) request.command |= link::write;
  text = text.substr(0, text.find("  "));  // the name of the place
  if (constexpr std::string_view isShort = " short"; text.ends_with(isShort)) {
    request.command |= link::shortReply;
    text.remove_suffix(isShort.size());
  }
  request.data = parseData(text);
  return request;
}

bool takeEnd(std::string_view& text, std::string_view end) {
  const bool found = text.ends_with(end);
  if (found) text.remove_suffix(end.size());
  return found;
}

/// The text behind it.
std::optional<simulator::Reply> parseReply(const TracedRequest& request, std::string_view text) {
  if (text == "no reply" || text.starts_with("an odd reply: ")) return std::nullopt;
  if (text.starts_with("status ")) {
    const auto status = wholeNumber<Byte>(text.substr(7));
    if (!status || *status == 0) fail("has an odd status");
    return simulator::Reply{.status = *status, .data = {}};
  }
  simulator::Reply reply{.status = 0, .data = text == "ok" ? Bytes() : parseData(text)};
  const std::size_t expected = link::hasShortReply(request.command) ? 0 : request.count();
  if (reply.data.size() != expected)
    fail("has " + std::to_string(reply.data.size()) + " of " + std::to_string(expected) + " bytes");
  return reply;
}

Exchange parseExchange(std::string_view text) {
  const auto end = text.find(arrow);
  if (end == std::string_view::npos) fail("is cut off");
  Exchange exchange{.request = parseRequest(text.substr(0, end)), .reply = {}};
  text.remove_prefix(end + arrow.size());
  text = text.substr(0, text.find(" (fault"));  // which a simulator was told of; once it was "(faulty reply)"
  exchange.late = takeEnd(text, " (late)");
  exchange.reply = parseReply(exchange.request, text);
  return exchange;
}

/// The line behind its times.
std::string_view withoutTimes(std::string_view line) {
  std::string_view rest = line;
  for (int i = 0; i < 2; ++i) {
    std::string_view behind = rest;
    if (!isTime(word(behind))) break;
    rest = behind;
  }
  return rest.substr(std::min(rest.find_first_not_of(' '), rest.size()));
}

bool isRequest(std::string_view text) {
  return text.starts_with("read ") || text.starts_with("write ");
}

bool isOfFastMode(std::string_view text) {
  return text.starts_with("instruction ") || text.starts_with("short request");
}

bool isOfTrace(std::string_view text) {
  return isRequest(text) || isOfFastMode(text) ||
         std::any_of(others.begin(), others.end(),
                     [&](std::string_view start) { return text.starts_with(start); });
}

/// The request in a line behind its times; none in one of another kind. Throws std::invalid_argument with the rest of
/// a sentence for a line that is not understood.
std::optional<Exchange> parseLine(std::string_view text) {
  if (isRequest(text)) return parseExchange(text);
  if (isOfFastMode(text)) fail("is of fast mode alone");
  if (!text.empty() && !isOfTrace(text)) fail("is none of a trace");
  return std::nullopt;
}

}  // namespace

TraceOutput::TraceOutput(std::string path) : path_(std::move(path)) {
  if (path_.empty()) return;
  if (path_ != standardStream && OutputFile(path_).isFile()) {
    const std::string before = readFileIfThere(path_).value_or("");
    // "velk diff --trace a.json b.json" takes a.json for the trace.
    if (!before.empty() && !before.starts_with(mark)) {
      throw Failure(badFile, path_ +
                                 ": it is there and is no trace; it is not overwritten (the word behind "
                                 "--trace is its file: --trace=FILE tells it from others)");
    }
  }
  sink_ = openGrowing(path_);
}

void TraceOutput::write(const std::string& line) const {
  if (!sink_) {
    // A bar may stand there.
    std::cerr << (errorIsTerminal() ? "\r\x1b[K" : "") << line + "\n" << std::flush;
    return;
  }
  try {
    sink_->write(line + "\n");
  } catch (const std::system_error& error) {
    throw Failure(badFile, path_ + ": " + error.code().message());
  }
}

WireListener TraceOutput::begin(const std::string& link, std::chrono::nanoseconds now) const {
  write(std::string(mark) + " of " + link + ", begun " + cli::now());
  write("# ms since then, ms until the reply was there, request -> reply");
  return [output = *this, now](const WireEvent& event) { output.write(textOf(event, now)); };
}

std::string textOf(const WireEvent& event, std::chrono::nanoseconds start) {
  constexpr std::size_t wide = 10;
  constexpr std::size_t narrow = 8;
  return rightAligned(milliseconds(event.begun - start), wide) +
         rightAligned(event.took ? milliseconds(*event.took) : "", narrow) + "  " + event.text;
}

TraceText parseTrace(std::string_view text) {
  TraceText trace;
  for (int number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = withoutTimes(line);
    trace.isTrace = trace.isTrace || isOfTrace(line);
    try {
      if (auto exchange = parseLine(line)) trace.requests.push_back({number, *std::move(exchange)});
    } catch (const std::invalid_argument& why) {
      trace.odd.push_back({number, why.what()});
    }
  }
  return trace;
}

}  // namespace velk::cli
