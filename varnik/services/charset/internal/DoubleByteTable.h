// The table of a charset of ASCII bytes and pairs, both ways. It is filled from ICU's converter a row at a time, as the
// rows come up.
//
// Many threads read it and fill it together, without a lock: each cell is an atomic of its own, and who fills a row
// that another one fills writes the same into it. Cells are kept inverted, so that memory not written yet says 0xFFFF.
#pragma once

#include <atomic>

#include "varnik/services/charset/internal/CharsetTable.h"
#include "varnik/services/charset/internal/IcuConverter.h"
#include "varnik/simd/ByteSet.h"

namespace vk_charset {

class DoubleByteTable {
 public:
  static constexpr u32 kRow = 0x100;
  /// What stands for no unit: the first byte begins nothing, or not with this second one, which is read again; the pair
  /// is one that no character has.
  static constexpr u16 kNoPair = 0xFFFF, kNoCharacter = 0xFFFE;
  /// What stands for no code. A code has its first byte on top and its second below; a byte alone has 0 there, as no
  /// pair ends in one.
  static constexpr u16 kNoCode = 0xFFFF;

  /// Returns the table of a charset; null when all places are taken by others, or ICU cannot supply it. Tables are kept
  /// for the lifetime of the process. Any thread may call.
  static DoubleByteTable* of(const CharsetInfo& charset);

  /// Returns the bytes that are no character alone: all of them from 0x80 on.
  const vk_simd::ByteSet& leads() const { return leads_; }
  /// Returns the unit of `first` alone, or where `isPair` of the pair: kNoPair as long as its row is not filled.
  /// `isPair` tells whether `first` is one of the leads.
  u16 unitOf(u8 first, u8 second, bool isPair) const {
    const u32 cell = u32{begins_[first]} + (isPair ? second : 0U);  // no branch for mixed text to get wrong
    return units_[cell].load(std::memory_order_relaxed);
  }
  /// Fills the row of a lead byte, unless it is, by `icu`, a converter of the charset. False when that has no memory.
  bool fillUnits(u8 lead, IcuConverter& icu);

  /// Returns the code of a unit, kNoCode as long as its row is not filled.
  u16 codeOf(u16 unit) const { return codes_[unit].load(std::memory_order_relaxed); }
  /// Fills the row of a unit in the same way.
  bool fillCodes(u16 unit, IcuConverter& icu);

 private:
  static constexpr u32 kNumLeads = 0x80;
  using Cell = std::atomic<u16>;

  bool fillSingles(const char* converter);

  std::atomic<s32> id_;  // the charset's; 0: the place is free, kTaken: it is being taken
  vk_simd::ByteSet leads_;
  u16 begins_[kRow];  // by first byte: the cell of its units
  std::atomic<bool> unitsFilled_[kNumLeads], codesFilled_[kRow];
  Cell units_[kNumLeads * kRow + kRow];  // the pairs, then the bytes alone
  Cell codes_[kRow * kRow];
};

}  // namespace vk_charset
