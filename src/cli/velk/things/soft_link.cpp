#include "cli/velk/things/soft_link.h"

#include <algorithm>

#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"
#include "controller/ctl_soft.h"

namespace velk::cli {
namespace {

constexpr Byte linkSize = 2;
constexpr Byte lastSource = 124;

/// `Ctl_Soft` reads an input link as nothing, so that it is taken from its record.
SoftLink inputLink(Byte source, Byte sub, Byte first, Byte second) {
  return {.source = source,
          .sub = sub,
          .destination = first,
          .parameters1 = static_cast<Byte>(second / 16),
          .parameters2 = static_cast<Byte>(second & 15)};
}

SoftLink readOutputLink(Serial& serial, Byte source, Byte sub) {
  SoftLink link{.source = source, .sub = sub, .toOutput = true};
  std::string kind;
  const auto read = [&] {
    return serial.Ctl_Soft("R", source, sub, link.destination, kind, link.parameters1, link.parameters2,
                           link.rising, link.falling);
  };
  expectRead(read, "reading link " + titleOf(link));
  return link;
}

/// The first byte of link 0.0 is also the last that the mailbox for modules uses: what a module's data left
/// there is no link. One that does anything has edges, or parameters in its second byte.
bool isLeftover(Serial& serial, Byte source, Byte sub, Byte second) {
  constexpr Byte edgesOfFirst = 0x11;
  if (source != 0 || sub != 0 || second != 0) return false;
  return (byteAt(readMemory(serial, controller::flanksOf(source), 1), 0) & edgesOfFirst) == 0;
}

/// The link that a record stands for.
std::optional<SoftLink> linkOf(Serial& serial, Byte source, Byte sub, std::string_view record) {
  constexpr Byte outputBit = 128;
  const Byte first = byteAt(record, 0);
  const Byte second = byteAt(record, 1);
  if (first == 0 || isLeftover(serial, source, sub, second)) return std::nullopt;
  return first >= outputBit ? readOutputLink(serial, source, sub) : inputLink(source, sub, first, second);
}

}  // namespace

bool isLinkSource(int address) {
  return address >= 0 && address <= lastSource && address != 1 && address != 2 && address != 100;
}

std::vector<Byte> linkSources() {
  std::vector<Byte> sources;
  for (Byte source = 0; source <= lastSource; ++source) {
    if (isLinkSource(source)) sources.push_back(source);
  }
  return sources;
}

std::vector<SoftLink> readLinks(Serial& serial, Byte source) {
  std::vector<SoftLink> links;
  // All four records at once: most sources have none.
  const Bytes records =
      readMemory(serial, controller::linkRecord(source, 0), std::size_t{linksOfSource} * linkSize);
  for (Byte sub = 0; sub < linksOfSource; ++sub) {
    const auto link = linkOf(serial, source, sub, slice(records, std::size_t{sub} * linkSize, linkSize));
    if (link) links.push_back(*link);
  }
  return links;
}

std::optional<SoftLink> readLink(Serial& serial, Byte source, Byte sub) {
  return linkOf(serial, source, sub, readMemory(serial, controller::linkRecord(source, sub), linkSize));
}

Byte writeLink(Serial& serial, SoftLink link) {
  const bool isRemoved = link.destination == 0;
  std::string kind = link.toOutput || isRemoved ? "O" : "I";
  return serial.Ctl_Soft("W", link.source, link.sub, link.destination, kind, link.parameters1,
                         link.parameters2, link.rising, link.falling);
}

std::string titleOf(const SoftLink& link) {
  return std::to_string(link.source) + "." + std::to_string(link.sub);
}

std::string destinationOf(const SoftLink& link) {
  return (link.toOutput ? "output " : "input ") + std::to_string(link.destination);
}

std::string destinationName(const SoftLink& link, OutputNames& names) {
  return link.toOutput ? names.of(link.destination) : "";
}

std::string parametersOf(const SoftLink& link) {
  return std::to_string(link.parameters1) + ", " + std::to_string(link.parameters2);
}

std::string edgesOf(const SoftLink& link) {
  if (link.rising && link.falling) return "rising, falling";
  return link.rising ? "rising" : link.falling ? "falling" : "";
}

Json jsonOf(const SoftLink& link, OutputNames& names) {
  Json json{{"source", link.source},
            {"sub", link.sub},
            {"kind", link.toOutput ? "output" : "input"},
            {"destination", link.destination}};
  if (link.toOutput) json["name"] = names.of(link.destination);
  json["parameters"] = {link.parameters1, link.parameters2};
  if (!link.toOutput) return json;
  json["rising"] = link.rising;
  json["falling"] = link.falling;
  return json;
}

Details detailsOf(const std::optional<SoftLink>& link, OutputNames& names) {
  if (!link) return {{"destination", "none"}};
  return {{"destination", named(destinationOf(*link), destinationName(*link, names))},
          {"parameters", parametersOf(*link)},
          {"edges", edgesOf(*link)}};
}

Details detailsOf(const std::vector<SoftLink>& links, Byte sub, OutputNames& names) {
  const auto found =
      std::find_if(links.begin(), links.end(), [&](const SoftLink& link) { return link.sub == sub; });
  return detailsOf(found == links.end() ? std::nullopt : std::optional(*found), names);
}

}  // namespace velk::cli
