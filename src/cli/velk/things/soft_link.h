#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/shared/json.h"
#include "cli/velk/things/details.h"
#include "cli/velk/things/output_names.h"
#include "component/serial.h"

namespace velk::cli {

constexpr int linksOfSource = 4;

/// A link of a source to an output or an input.
struct SoftLink {
  Byte source = 0;
  Byte sub = 0;  ///< sub-address of the source, 0 to 3
  bool toOutput = false;
  Byte destination = 0;
  Byte parameters1 = 0;  ///< 0 to 15; 0 of links to inputs
  Byte parameters2 = 0;  ///< 0 to 15
  bool rising = false;   ///< of links to outputs
  bool falling = false;
};

/// From this input on a link to an input has `parameters2`.
constexpr Byte firstParametrisedInput = 101;

/// Whether an address can be the source of links.
bool isLinkSource(int address);

/// All addresses that can be the source of links.
std::vector<Byte> linkSources();

/// The links of a source that are there. A record of link 0.0 that only the mailbox for modules can have
/// written is none.
std::vector<SoftLink> readLinks(Serial& serial, Byte source);

/// One of them; none when it is not there.
std::optional<SoftLink> readLink(Serial& serial, Byte source, Byte sub);

/// Writes a link by `Ctl_Soft`, whose result it returns; one without a destination is removed.
Byte writeLink(Serial& serial, SoftLink link);

/// "30.1".
std::string titleOf(const SoftLink& link);

/// "output 5".
std::string destinationOf(const SoftLink& link);

/// The name of an output that it leads to; empty without one.
std::string destinationName(const SoftLink& link, OutputNames& names);

/// "0, 15".
std::string parametersOf(const SoftLink& link);

/// "rising, falling".
std::string edgesOf(const SoftLink& link);

Json jsonOf(const SoftLink& link, OutputNames& names);

/// What a link does; one detail that says so when it is not there.
Details detailsOf(const std::optional<SoftLink>& link, OutputNames& names);

/// What the link `sub` among the links of a source does.
Details detailsOf(const std::vector<SoftLink>& links, Byte sub, OutputNames& names);

}  // namespace velk::cli
