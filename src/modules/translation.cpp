#include "modules/translation.h"

#include "modules/conversion.h"
#include "modules/masks.h"
#include "modules/module.h"

namespace velk::modules {

void translateRead(const Subject& subject, Byte offset, Bytes& data) {
  const RecordRow* const row = rowFor(subject, offset);
  data = ConvertRXData(subject, data);
  if (row != nullptr && hasMasks(*row, offset)) data = codesOfMasks(data, subject.known);
}

Bytes translatedForWrite(const Subject& subject, Byte offset, Bytes data) {
  if (subject.serialNumber != ownSerial) checkWrite(subject, offset, data);
  const RecordRow* const row = rowFor(subject, offset);
  if (row != nullptr && hasMasks(*row, offset)) data = masksOfCodes(data, subject.known);
  return isSentAsItIs(subject, offset) ? data : ConvertTXData(subject, data);
}

}  // namespace velk::modules
