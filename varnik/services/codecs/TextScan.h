#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

/// Reads one value from a text by a scanf-style format.
class VARNIK_API TextScan {
 public:
  /// Matches the characters of `format` before its "%d" against `text` without regard to ASCII case, skips white space,
  /// then reads a decimal number with an optional sign into `*value`. A number past 32 bits saturates. Returns the
  /// count of values read, 0 or 1; `*value` is unchanged for 0.
  static s32 scanOne(const char* text, const char* format, s32* value);
};
