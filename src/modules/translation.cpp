#include "modules/translation.h"

#include "modules/conversion.h"
#include "modules/masks.h"

namespace velk::modules {

void translateRead(const Subject& subject, Byte offset, Bytes& data) {
  data = ConvertRXData(subject, data);
  if (hasMasks(rowFor(subject, offset), offset)) data = codesOfMasks(data, subject.known);
}

Bytes translatedForWrite(const Subject& subject, Byte offset, Bytes data) {
  if (!isOwnModule(subject.serialNumber)) checkWrite(subject, offset, data);
  const RecordRow& row = rowFor(subject, offset);
  if (hasMasks(row, offset)) data = masksOfCodes(data, subject.known);
  return isSentAsItIs(row, offset) ? data : ConvertTXData(subject, data);
}

}  // namespace velk::modules
