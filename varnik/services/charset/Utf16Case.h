// Letter case of UTF-16 text, code unit for code unit: what one unit alone maps to. A unit that maps to none or to more
// than one (such as a surrogate or U+00DF) stays as it is. Any thread may call.
#pragma once

#include "varnik/services/memory/Api.h"
#include "varnik/services/memory/Types.h"

class VARNIK_API Utf16Case {
 public:
  /// Returns the simple upper- or lower-case mapping of a unit (Unicode Character Database, UnicodeData.txt).
  static u16 toUpper(u16 unit);
  static u16 toLower(u16 unit);
  /// Maps `n` units in host order in place. They may lie at any address.
  static void toUpper(u8* units, u32 n);
  static void toLower(u8* units, u32 n);
};

/// Returns the first occurrence of `needle` (`m` units) in `haystack` (`n` units), letter case ignored by simple case
/// folding unit for unit; null when there is none. An empty needle is found at the start. Units are in host order, at
/// any address. The time is linear in `n` + `m`; nothing behind the occurrence is looked at but a block of units.
VARNIK_API const u16* vk_findUtf16NoCase(const u16* haystack, u32 n, const u16* needle, u32 m);
