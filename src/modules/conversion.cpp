#include "modules/conversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "values/numbers.h"
#include "values/runtime_error.h"

namespace velk::modules {
namespace {

constexpr std::array<Byte, 1> at2{2};
constexpr std::array<Byte, 1> at38{38};
constexpr std::array<Byte, 4> at2To8{2, 4, 6, 8};
constexpr std::array<Byte, 8> at2To16{2, 4, 6, 8, 10, 12, 14, 16};
constexpr std::array<Byte, 8> at2To8And26To32{2, 4, 6, 8, 26, 28, 30, 32};

enum class Models : std::uint8_t { known, any };

/// The fields that are converted in one direction.
struct Selections {
  Positions positions;
  Models models = Models::known;  ///< the others' records stay as they are
  Byte shortest = 0;              ///< and so do shorter ones
};

constexpr std::nullopt_t anyType = std::nullopt;

struct Conversion {
  std::optional<std::int16_t> type;
  SerialRange serials;
  Selections sent;
  Selections received;
};

// clang-format off
/// The first row that fits decides, and the last fits any module; what a row leaves out is not converted. The
/// two directions are no mirror images: hosts and modules rely on both as they are.
constexpr std::array conversions{
    //         type     serial numbers      sent                        received
    Conversion{anyType, {50000, 69999}},
    Conversion{anyType, {80000, 89999}},
    Conversion{anyType, {110000, 119999},   {},                         {at2To8}},
    Conversion{anyType, {240000, 249999},   {},                         {at2To8}},
    Conversion{anyType, {270000, 279999},   {at2, Models::any},         {at2, Models::any}},
    Conversion{anyType, {831000, 839999},   {at38, Models::any, 38},    {at2To8}},
    Conversion{anyType, {910000, 919999}},
    Conversion{anyType, {930000, 939999},   {},                         {at2To8}},
    Conversion{anyType, {970000, 979999},   {},                         {at2To8}},
    Conversion{anyType, from(980100)},
    Conversion{7,       longSevens,         {at2To16},                  {at2To16}},
    Conversion{29,      all,                {at2},                      {at2}},
    Conversion{75,      all,                {},                         {at2To8}},
    Conversion{76,      all,                {},                         {at2To8}},
    Conversion{77,      all,                {},                         {at2To8}},
    Conversion{78,      all,                {},                         {at2To8}},
    Conversion{95,      from(951000),       {at2To8And26To32},          {at2To8And26To32}},
    Conversion{96,      all,                {at2To8And26To32},          {at2To8And26To32}},
    Conversion{anyType, all,                {at2To8},                   {at2To8}},
};
// clang-format on
static_assert(std::ranges::is_sorted(conversions.begin(), conversions.end() - 1, {},
                                     [](const auto& row) { return std::pair(row.type, row.serials.first); }));

const Conversion& conversionOf(const Subject& subject) {
  const auto fits = [type = subject.type(), serial = subject.serial()](const Conversion& row) {
    return row.type.value_or(type) == type && row.serials.contains(serial);
  };
  return *std::ranges::find_if(conversions, fits);
}

Positions positionsOf(const Selections& selections, const Subject& subject) {
  return subject.known || selections.models == Models::any ? selections.positions : Positions{};
}

std::size_t indexOf(std::string_view data, Byte position) {
  if (position == 0 || position > data.size()) throw RuntimeError(RuntimeError::invalidArgument);
  return position - std::size_t{1};
}

}  // namespace

Positions positionsReceived(const Subject& subject) {
  return positionsOf(conversionOf(subject).received, subject);
}

Positions positionsSent(const Subject& subject, std::size_t size) {
  const Selections& sent = conversionOf(subject).sent;
  return size < sent.shortest ? Positions{} : positionsOf(sent, subject);
}

Bytes ConvertTXSub(Bytes data, Byte position) {
  const std::size_t index = indexOf(data, position);
  const int n = byteValue(data[index]) & 15;
  data[index] = character(roundTo<Byte>(255 - std::exp2(n - 1) - std::exp2(n + 3)));
  return data;
}

Bytes ConvertRXSub(Bytes data, Byte position) {
  const std::size_t index = indexOf(data, position);
  const int mask = 15 - (byteValue(data[index]) & 15);
  data[index] = character(mask == 4 ? 3 : mask == 8 ? 4 : mask);
  return data;
}

Bytes ConvertTXData(const Subject& subject, Bytes data) {
  for (const Byte position : positionsSent(subject, data.size()))
    data = ConvertTXSub(std::move(data), position);
  return data;
}

Bytes ConvertRXData(const Subject& subject, Bytes data) {
  for (const Byte position : positionsReceived(subject)) data = ConvertRXSub(std::move(data), position);
  return data;
}

}  // namespace velk::modules
