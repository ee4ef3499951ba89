#pragma once

#include "simulator/store.h"

namespace velk::simulator {

/// The memory of a controller in a small house: outputs in most modes, soft links, presets, switch times,
/// a simulated evening, infrared texts, the initialisation block and the time of its clock.
///
/// The names of outputs are 16 characters at page offset 64 of the output's page, a place that nothing else
/// uses: at offset 40 the same pages hold the display texts and the texts of presets.
Store house();

}  // namespace velk::simulator
