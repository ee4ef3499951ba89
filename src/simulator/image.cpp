#include "simulator/image.h"

#include <algorithm>
#include <array>
#include <istream>
#include <ostream>
#include <sstream>

#include "values/hex.h"

namespace velk::simulator {
namespace {

constexpr std::string_view format = "velk-memory";
constexpr int version = 1;
constexpr std::size_t bytesInLine = 16;
constexpr std::array inTheirOrder{Area::block, Area::external, Area::highBlock, Area::highExternal};

[[noreturn]] void fail(int line, const std::string& why) {
  throw ImageError("line " + std::to_string(line) + ": " + why);
}

Bytes bytesOf(const std::string& word, std::size_t count, int line) {
  Bytes bytes;
  for (std::size_t i = 0; i < word.size(); i += 2) {
    if (const auto byte = byteOfHex(slice(word, i, 2))) bytes += character(*byte);
  }
  if (word.size() != 2 * count || bytes.size() != count) {
    fail(line, "\"" + word + "\" is not a number of " + std::to_string(2 * count) + " hexadecimal digits");
  }
  return bytes;
}

void checkFormat(const std::string& line) {
  std::istringstream words(line);
  std::string name;
  int number = 0;
  if (!(words >> name >> number) || name != format) fail(1, "this is no memory image");
  if (number != version) fail(1, "the image has version " + std::to_string(number) + ", known is version 1");
}

void readLine(const std::string& text, int line, Store& store) {
  std::istringstream words(text);
  std::string word;
  words >> word;
  const auto* const area = std::find(link::areaNames.begin(), link::areaNames.end(), word);
  if (area == link::areaNames.end()) fail(line, "there is no memory \"" + word + "\"");
  if (!(words >> word)) fail(line, "the address is missing");
  const Bytes address = bytesOf(word, 2, line);
  Bytes bytes;
  while (words >> word) bytes += bytesOf(word, 1, line);
  if (bytes.empty() || bytes.size() > bytesInLine) fail(line, "a line holds 1 to 16 bytes");
  store.write(
      addressAt(static_cast<Area>(area - link::areaNames.begin()), byteAt(address, 0), byteAt(address, 1)),
      bytes);
}

void writeLine(std::ostream& out, Address at, const Bytes& bytes) {
  out << padded(nameOf(at.area), 2) << ' ' << capitalHex(Bytes{character(at.high()), character(at.low())})
      << ' ' << capitalHex(bytes, " ") << '\n';
}

}  // namespace

Store readImage(std::istream& in) {
  Store store;
  std::string text;
  std::getline(in, text);
  checkFormat(text);
  for (int line = 2; std::getline(in, text); ++line) {
    if (!text.empty() && text.back() == '\r') text.pop_back();
    if (text == "end") return store;
    if (text.empty() || text.front() == '#') continue;
    readLine(text, line, store);
  }
  throw ImageError("the image is not complete: its last line, \"end\", is missing");
}

void writeImage(std::ostream& out, const Store& store) {
  constexpr std::size_t lines = Store::areaSize / bytesInLine;
  out << format << ' ' << version << '\n';
  for (const Area area : inTheirOrder) {
    for (std::size_t line = 0; line < lines; ++line) {
      const Address at{.area = area,
                       .page = static_cast<Byte>(line / bytesInLine),
                       .offset = static_cast<Byte>(line % bytesInLine * bytesInLine)};
      const Bytes bytes = store.read(at, bytesInLine);
      if (bytes.find_first_not_of('\0') != Bytes::npos) writeLine(out, at, bytes);
    }
  }
  out << "end\n";
}

}  // namespace velk::simulator
