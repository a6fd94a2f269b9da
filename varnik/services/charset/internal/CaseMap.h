// Mappings of single UTF-16 units, each made from ICU's properties a page of 256 units at a time, when first asked for.
#pragma once

#include <atomic>

#include "varnik/services/memory/Types.h"

namespace vk_charset {

enum class Case { kUpper, kLower, kFolded };  // kFolded: simple case folding, CaseFolding.txt, status C and S

template <Case kCase>
class CaseMap {
 public:
  /// Returns what a unit maps to: itself where the character's mapping is no single unit. Any thread may call.
  static u16 of(u16 unit) {
    u8 page = pages_[unit >> 8].load(std::memory_order_acquire);
    if (page < kFirst) {
      if (page == kUnknown) page = makePage(static_cast<u8>(unit >> 8));
      if (page == kUnknown) return mapped(unit);
      if (page == kSelf) return unit;
    }
    return units_[page - kFirst][unit & 0xFF];
  }

 private:
  // What pages_ holds: nothing yet, that no unit of the page changes, or kFirst and an index of units_.
  static constexpr u8 kUnknown = 0, kSelf = 1, kFirst = 2;
  static constexpr u32 kMaxPages = 32;  // Unicode has 20 pages with letters that have case

  static u8 makePage(u8 page);
  static u16 mapped(u16 unit);

  static inline std::atomic<u8> pages_[256];
  static inline std::atomic<u32> used_;
  static inline u16 units_[kMaxPages][256];
};

using UpperCase = CaseMap<Case::kUpper>;
using LowerCase = CaseMap<Case::kLower>;
using FoldedCase = CaseMap<Case::kFolded>;

}  // namespace vk_charset
