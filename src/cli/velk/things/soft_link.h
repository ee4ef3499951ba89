#pragma once

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
  Byte parameters1 = 0;  ///< 0 to 15; of links to outputs
  Byte parameters2 = 0;
  bool rising = false;
  bool falling = false;
};

/// All addresses that can be the source of links.
std::vector<Byte> linkSources();

/// The links of a source that are there. A record of link 0.0 that only the mailbox for modules can have
/// written is none.
std::vector<SoftLink> readLinks(Serial& serial, Byte source);

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

/// What the link `sub` among the links of a source does; one detail that says so when it is not there.
Details detailsOf(const std::vector<SoftLink>& links, Byte sub, OutputNames& names);

}  // namespace velk::cli
