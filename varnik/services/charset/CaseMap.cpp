#include "varnik/services/charset/internal/CaseMap.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace vk_charset {

template <Case kCase>
u16 CaseMap<kCase>::mapped(u16 unit) {
  const UChar32 code = kCase == Case::kUpper   ? u_toupper(unit)
                       : kCase == Case::kLower ? u_tolower(unit)
                                               : u_foldCase(unit, U_FOLD_CASE_DEFAULT);
  return code >= 0 && code <= 0xFFFF ? static_cast<u16>(code) : unit;
}

// Two threads may make one page each for the same units: alike, and one of them is lost.
template <Case kCase>
u8 CaseMap<kCase>::makePage(u8 page) {
  u16 added[256];
  bool changes = false;
  for (u32 i = 0; i < 256; ++i) {
    const u16 unit = static_cast<u16>(u32{page} << 8 | i);
    added[i] = static_cast<u16>(mapped(unit) - unit);
    changes |= added[i] != 0;
  }
  u8 made = kNoCase;
  if (changes) {
    const u32 place = used_.load(std::memory_order_relaxed) < kMaxPages ? used_.fetch_add(1) : kMaxPages;
    if (place >= kMaxPages) return kUnknown;
    made = static_cast<u8>(kFirst + place);
    std::copy(added, added + 256, added_[made]);
  }
  pages_[page].store(made, std::memory_order_release);
  return made;
}

template class CaseMap<Case::kUpper>;
template class CaseMap<Case::kLower>;
template class CaseMap<Case::kFolded>;

}  // namespace vk_charset
