#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/shared/nearest.h"
#include "cli/velk/commands/change.h"
#include "cli/velk/things/soft_link.h"
#include "cli/velk/things/typed_entry.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

constexpr const char* linkForm = "set [output OUTPUT | input N] [A,B] [rising|falling|both|none] | clear";

struct LinkCommandOptions : ChangeOptions {
  std::string name;
  std::vector<std::string> words;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("LINK", name, "The link: its source, a point and which input of it, as in 30.0").required();
    line.option("set", words,
                "set output OUTPUT A,B EDGES: change it, where what is left out stays; or clear: remove it")
        .typeName(std::string("[") + linkForm + "]");
  }
};

struct Edges {
  std::string_view name;
  bool rising;
  bool falling;
};

constexpr std::array edgeTable{
    Edges{"rising", true, false},
    Edges{"falling", false, true},
    Edges{"both", true, true},
    Edges{"none", false, false},
};

struct LinkParameters {
  Byte first = 0;
  Byte second = 0;
};

/// What the words behind "link" say.
struct WantedLink {
  SoftLink link;  ///< source and sub-address
  bool changes = false;
  bool clears = false;
  std::optional<std::string> output;  ///< name or number
  std::optional<Byte> input;
  std::optional<LinkParameters> parameters;
  std::optional<Edges> edges;
};

SoftLink parseLinkName(const std::string& typed) {
  const std::string_view text = typed;
  const auto point = text.find('.');
  const auto source = wholeNumber<int>(text.substr(0, point));
  const auto sub = wholeNumber<int>(text.substr(std::min(point, text.size() - 1) + 1));
  if (point == std::string_view::npos || !source || !sub) {
    throw std::invalid_argument("\"" + typed + "\" is no link: a source and its input, as in 30.0");
  }
  if (!isLinkSource(*source) || *sub < 0 || *sub >= linksOfSource) {
    throw std::invalid_argument("there is no link " + typed +
                                ": sources are 0, 3 to 99 and 101 to 124, the inputs of each 0 to 3");
  }
  return {.source = static_cast<Byte>(*source), .sub = static_cast<Byte>(*sub)};
}

LinkParameters parseParameters(const std::string& typed, std::size_t comma) {
  constexpr int lastParameter = 15;
  constexpr const char* what = "each of the two numbers of a link";
  const std::string_view text = typed;
  return {.first = numberIn(typed, text.substr(0, comma), what, 0, lastParameter),
          .second = numberIn(typed, text.substr(comma + 1), what, 0, lastParameter)};
}

const Edges& parseEdges(const std::string& typed) {
  const auto* const found =
      std::find_if(edgeTable.begin(), edgeTable.end(), [&](const Edges& row) { return row.name == typed; });
  if (found != edgeTable.end()) return *found;
  std::vector<std::string> words{"output", "input"};
  for (const Edges& row : edgeTable) words.emplace_back(row.name);
  throw std::invalid_argument("\"" + typed + "\" is no part of a link" +
                              didYouMean(typed, words, std::string(": ") + linkForm));
}

template <class Value>
void setPart(std::optional<Value>& value, Value typed, const std::string& what) {
  if (value) throw std::invalid_argument("a link has " + what);
  value = std::move(typed);
}

void parseDestination(WantedLink& wanted, const std::string& kind, const std::string& typed) {
  constexpr int lastInput = 127;
  if (wanted.output || wanted.input) throw std::invalid_argument("a link has one destination");
  if (kind == "input") {
    wanted.input = numberIn(typed, typed, "an input", 1, lastInput);
  } else {
    outputNumberOf(typed);  // a wrong one is told before the link is opened
    wanted.output = typed;
  }
}

void parseLinkSet(WantedLink& wanted, const std::vector<std::string>& words) {
  for (std::size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "output" || word == "input") {
      if (++i == words.size()) throw std::invalid_argument("behind " + word + " stands which one");
      parseDestination(wanted, word, words[i]);
    } else if (const auto comma = word.find(','); comma != std::string::npos) {
      setPart(wanted.parameters, parseParameters(word, comma), "two numbers, A,B");
    } else {
      setPart(wanted.edges, parseEdges(word), "its edges in one word");
    }
  }
}

WantedLink parseLinkWords(const LinkCommandOptions& options) {
  const std::vector<std::string>& words = options.words;
  WantedLink wanted{.link = parseLinkName(options.name), .changes = !words.empty()};
  if (words.empty()) return wanted;
  wanted.clears = words.front() == "clear" && words.size() == 1;
  if (wanted.clears) return wanted;
  if (words.front() != "set" || words.size() == 1) {
    throw std::invalid_argument(std::string("expected after the link: nothing, or ") + linkForm);
  }
  parseLinkSet(wanted, words);
  return wanted;
}

void setDestination(SoftLink& link, bool toOutput, Byte destination) {
  // The numbers and edges of another kind of link are not this one's.
  if (link.toOutput != toOutput || link.destination == 0) {
    link.parameters1 = link.parameters2 = 0;
    link.rising = link.falling = toOutput;
  }
  link.toOutput = toOutput;
  link.destination = destination;
}

/// A link to an input has the second number alone, and from 101 on; the others are written as 0.
void fitInput(SoftLink& link, const WantedLink& wanted) {
  if (wanted.edges) throw std::invalid_argument("a link to an input has no edges");
  link.parameters1 = 0;
  if (link.destination < firstParametrisedInput) link.parameters2 = 0;
  const auto& typed = wanted.parameters;
  if (!typed || (typed->first == link.parameters1 && typed->second == link.parameters2)) return;
  throw std::invalid_argument(
      "a link to " + destinationOf(link) + " has " +
      (link.destination < firstParametrisedInput ? "no numbers but 0,0" : "the numbers 0,0 to 0,15"));
}

void requireOther(const SoftLink& link) {
  if (link.destination != link.source || (link.parameters1 >> link.sub & 1) == 0) return;
  throw std::invalid_argument("a link of source " + std::to_string(link.source) +
                              " leads to itself when bit " + std::to_string(link.sub) +
                              " of its first number, " + std::to_string(link.parameters1) + ", is set");
}

/// The link as it will be; none when it is removed. Throws std::invalid_argument with a sentence for one that
/// cannot be.
std::optional<SoftLink> linkWith(const WantedLink& wanted, const std::optional<SoftLink>& before,
                                 OutputNames& names) {
  if (wanted.clears) return std::nullopt;
  SoftLink after = before.value_or(wanted.link);
  if (wanted.output) setDestination(after, true, names.find(*wanted.output));
  if (wanted.input) setDestination(after, false, *wanted.input);
  if (after.destination == 0) {
    throw std::invalid_argument("link " + titleOf(after) +
                                " leads nowhere yet: give output OUTPUT or input N");
  }
  if (wanted.parameters) {
    after.parameters1 = wanted.parameters->first;
    after.parameters2 = wanted.parameters->second;
  }
  if (wanted.edges) {
    after.rising = wanted.edges->rising;
    after.falling = wanted.edges->falling;
  }
  if (after.toOutput) {
    requireOther(after);
  } else {
    fitInput(after, wanted);
  }
  return after;
}

Json linkJson(const SoftLink& place, const std::optional<SoftLink>& link, OutputNames& names) {
  if (link) return jsonOf(*link, names);
  return {{"source", place.source}, {"sub", place.sub}, {"kind", "none"}};
}

int changeLink(const LinkCommandOptions& options, Serial& serial, const WantedLink& wanted) {
  OutputNames names(serial);
  const SoftLink& place = wanted.link;
  const auto shown = [&](const std::optional<SoftLink>& link) {
    return Shown{detailsOf(link, names), linkJson(place, link, names)};
  };
  const auto read = [&] { return readLink(serial, place.source, place.sub); };
  const auto before = read();
  const auto after = linkWith(wanted, before, names);
  return carryOut(options, {.title = "link " + titleOf(place),
                            .before = shown(before),
                            .after = shown(after),
                            .write = [&] { return writeLink(serial, after.value_or(place)); },
                            .read = [&] { return shown(read()); }});
}

std::string linkLine(const SoftLink& place, const std::optional<SoftLink>& link, OutputNames& names) {
  std::string line = "link " + titleOf(place) + ": ";
  if (!link) return line + "none\n";
  line += named(destinationOf(*link), destinationName(*link, names)) + "; parameters " + parametersOf(*link);
  if (link->toOutput) line += "; " + (edgesOf(*link).empty() ? "no edges" : edgesOf(*link));
  return line + "\n";
}

int carryOutLink(const LinkCommandOptions& options) {
  const WantedLink wanted = parseLinkWords(options);
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  if (wanted.changes) return changeLink(options, serial, wanted);
  const auto link = readLink(serial, wanted.link.source, wanted.link.sub);
  OutputNames names(serial);
  if (options.json) {
    std::cout << linkJson(wanted.link, link, names) << '\n';
  } else {
    std::cout << linkLine(wanted.link, link, names);
  }
  return success;
}

}  // namespace

void addLink(const CommandLine& velk, Job& job) {
  addCommand<LinkCommandOptions>(
      velk, job, "link", "Show a link of a source, set or remove it",
      "  velk link --simulate 30.0\n"
      "  velk link 30.0 set falling --dry-run\n"
      "  velk link 30.2 set output \"Kitchen ceiling\" 3,10 rising\n"
      "  velk link 30.3 set input 105 0,2\n"
      "  velk link 30.3 clear\n"
      "\nAn output is its number, its name or a beginning of it. What the two numbers A,B, 0 to 15 each, do "
      "is\n"
      "for the destination to say, so copy them from a link that does the same. What is left out stays as "
      "it\n"
      "is; a new link to an output has 0,0 and both edges. A link to an input has no edges, and the second\n"
      "number alone, from input 101 on.\n",
      carryOutLink);
}

}  // namespace velk::cli
