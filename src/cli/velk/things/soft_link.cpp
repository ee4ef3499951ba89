#include "cli/velk/things/soft_link.h"

#include <algorithm>

#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"
#include "controller/ctl_soft.h"

namespace velk::cli {
namespace {

constexpr Byte linkSize = 2;

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
bool isLeftover(Serial& serial, Byte source, Byte sub, const Bytes& records) {
  constexpr Byte edgesOfFirst = 0x11;
  if (source != 0 || sub != 0 || byteAt(records, 1) != 0) return false;
  return (byteAt(readMemory(serial, controller::flanksOf(source), 1), 0) & edgesOfFirst) == 0;
}

}  // namespace

std::vector<Byte> linkSources() {
  constexpr Byte last = 124;
  std::vector<Byte> sources;
  for (Byte source = 0; source <= last; ++source) {
    if (source != 1 && source != 2 && source != 100) sources.push_back(source);
  }
  return sources;
}

std::vector<SoftLink> readLinks(Serial& serial, Byte source) {
  constexpr Byte outputBit = 128;
  std::vector<SoftLink> links;
  // All four records at once: most sources have none.
  const Bytes records =
      readMemory(serial, controller::linkRecord(source, 0), std::size_t{linksOfSource} * linkSize);
  for (Byte sub = 0; sub < linksOfSource; ++sub) {
    const Byte first = byteAt(records, std::size_t{sub} * linkSize);
    if (first == 0 || isLeftover(serial, source, sub, records)) continue;
    if (first >= outputBit) links.push_back(readOutputLink(serial, source, sub));
    // `Ctl_Soft` reads an input link as nothing, so that its destination is taken from the record.
    else
      links.push_back({.source = source, .sub = sub, .destination = first});
  }
  return links;
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
  if (!link.toOutput) return json;
  json["name"] = names.of(link.destination);
  json["parameters"] = {link.parameters1, link.parameters2};
  json["rising"] = link.rising;
  json["falling"] = link.falling;
  return json;
}

Details detailsOf(const std::vector<SoftLink>& links, Byte sub, OutputNames& names) {
  const auto found =
      std::find_if(links.begin(), links.end(), [&](const SoftLink& link) { return link.sub == sub; });
  if (found == links.end()) return {{"destination", "none"}};
  return {{"destination", named(destinationOf(*found), destinationName(*found, names))},
          {"parameters", parametersOf(*found)},
          {"edges", edgesOf(*found)}};
}

}  // namespace velk::cli
