#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "link/address.h"
#include "memory/map.h"

/// The lines that a backup consists of.
namespace velk::cli {

using link::Address;
using link::Area;
using memory::Thing;
using memory::ThingKind;

/// How many bytes one transaction reads, from an offset that is a multiple of it.
constexpr int lineSize = 16;

/// The two bytes that the links of source 0 share with the mailbox for modules, which overwrites them.
inline constexpr std::array sharedWithMailbox{Address{.page = 0, .offset = 31},
                                              Address{.page = 0, .offset = 32}};

/// A byte's page and offset as backups write them, in hexadecimal digits, and its whole name: "V 0510".
std::string digitsOf(Address at);
std::string keyOf(Address at);

/// The bytes from an address on with zeros in place of those that are no configuration.
Bytes onlyConfiguration(Address at, Bytes bytes);

/// Which kinds of things are asked for.
using Wanted = std::function<bool(ThingKind)>;

/// The first bytes of all lines that hold such things, but for the events, whose lists end by themselves.
std::vector<Address> fixedLines(const Wanted& wanted);

}  // namespace velk::cli
