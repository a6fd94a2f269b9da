// Letter case of UTF-16 text, code unit for code unit: what one unit alone maps to. A unit that maps to none or to more
// than one (such as a surrogate or U+00DF) stays as it is.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class VARNIK_API Utf16Case {
 public:
  /// Returns the simple upper- or lower-case mapping of a unit (Unicode Character Database, UnicodeData.txt).
  static u16 toUpper(u16 unit);
  static u16 toLower(u16 unit);
};

/// Returns the first occurrence of `needle` (`m` units) in `haystack` (`n` units), letter case ignored by simple case
/// folding unit for unit; null when there is none. An empty needle is found at the start. Units are in host order.
VARNIK_API const u16* vk_findUtf16NoCase(const u16* haystack, u32 n, const u16* needle, u32 m);
