#pragma once

#include "values/bytes.h"

namespace velk {

/// The result bytes that the methods give. Any other is a status that the controller gave; one of them may
/// have the same number.
enum Result : Byte {
  success = 0,
  portNotOpen = 55,
  portAlreadyOpen = 56,
  notConnected = 58,
  nothingToClose = 84,
  nothingDone = 99,
  otherFailure = 100,  ///< no reply or an unexpected one, or a run-time error without a code of its own
  badSelector = 101,   ///< `ReadOrWrite`
  countTooLarge = 102,
  badOffset = 103,
  wrongLength = 104,
  badValue = 105,
  badSerialNumber = 106,
  controllerBusy = 107,
  badMode = 111,
  badAddress = 112,  ///< or a field that holds one
  badPreset = 113,
  badSubAddress = 115,
  badLinkKind = 116,
  moduleRefused127 = 127,
  moduleRefused128 = 128,
  readsBackDifferent = 201,
  noMatchingReply = 251,  ///< no reply with the request's header after resynchronising
  noReply = 252,          ///< no reply, or a wrong length to a read
  wrongWriteReply = 253,  ///< wrong reply length to a write
  echoFault = 254,        ///< echo fault, bad status, or a foreign header over TCP
  moduleRefused255 = 255,
};

/// The result for the number of a run-time error: 8005 gives 56, 8012 gives 84, 8018 gives 55, 40006 and
/// 40020 give 58, anything else 100.
Byte resultOfError(double number);

}  // namespace velk
