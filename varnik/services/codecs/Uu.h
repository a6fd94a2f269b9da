#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class DataBuffer;
class StringBuffer;

/// Uuencoded text (POSIX `uuencode`, the historical algorithm).
class VARNIK_API Uu {
 public:
  /// Appends `begin MODE NAME`, lines of up to 45 bytes, and `end`, each line ended by LF. An empty `mode` means 644,
  /// an empty `name` "data"; null counts as empty. False when memory runs out.
  bool uu_encode(const DataBuffer& data, const char* mode, const char* name, StringBuffer& out) const;
};
