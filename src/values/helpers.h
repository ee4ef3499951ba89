#pragma once

#include <optional>
#include <string>

#include "values/bytes.h"

/// The pure conversions that hosts use and that the controller's memory is packed and tested with.
namespace velk::values {

/// Packed BCD of `Getal`: tens in the high nibble, ones in the low. 0 to 159; run-time error 6 from 160 on.
Byte DECtoBCD(Byte Getal);

/// Whether bit `Bitnr` of `Bytte` is 1. False for bits 8 to 29; run-time error 6 from bit 30 on.
bool IfSetBit(Byte Bytte, Byte Bitnr);

/// The number (0 to 7) of the lowest bit of `Bytte` that is 1; nothing when no bit is.
std::optional<Byte> WhatBit(Byte Bytte);

/// `WhatBit` of the low four bits; 0 when none is set.
Byte LowNibbleBit(Byte Waarde);

/// The smaller of two bytes.
Byte Minimum(Byte Getal1, Byte Getal2);

/// The last `Lengte` characters of the number's digits behind as many zeros.
std::string LdZr(double Getal, Byte Lengte);

/// The result byte for a platform error number: 8005 gives 56, 8012 gives 84, 8018 gives 55, 40006 and 40020
/// give 58, anything else 100.
Byte ConvertErr(double ErrorNr);

}  // namespace velk::values
