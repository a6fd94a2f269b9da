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
    if (page == kUnknown) [[unlikely]] {
      page = makePage(static_cast<u8>(unit >> 8));
      if (page == kUnknown) return mapped(unit);
    }
    return static_cast<u16>(unit + added_[page][unit & 0xFF]);
  }

 private:
  // What pages_ holds: nothing yet, or which row of added_ tells what is added to a unit of the page. The row of pages
  // without case is all zeros: text goes to and fro between letters and others, and no branch has to foresee it.
  static constexpr u8 kUnknown = 0, kNoCase = 1, kFirst = 2;
  static constexpr u32 kMaxPages = 32;  // Unicode has 20 pages with letters that have case

  static u8 makePage(u8 page);
  static u16 mapped(u16 unit);

  static inline std::atomic<u8> pages_[256];
  static inline std::atomic<u32> used_;
  static inline u16 added_[kFirst + kMaxPages][256];
};

using UpperCase = CaseMap<Case::kUpper>;
using LowerCase = CaseMap<Case::kLower>;
using FoldedCase = CaseMap<Case::kFolded>;

}  // namespace vk_charset
