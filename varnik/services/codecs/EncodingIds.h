#pragma once

#include "varnik/services/logging/LogBase.h"
#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// The numbers of the text encodings, as `DataBuffer::appendEncodedById` takes them.
class VARNIK_API _clsEncode {
 public:
  /// Returns the id that decodes what is encoded under the name; 0 when it is no encoding's name. White space around
  /// the name and ASCII case do not count, except in the prefixes "finger" and "thumb"; "qp-" may be followed by
  /// anything.
  static s32 encodingIdForName(const char* name, LogBase& log);
};
