// The table of a charset of ASCII bytes and pairs, filled from ICU's converter a lead byte at a time, as they come up.
#pragma once

#include <atomic>

#include "varnik/services/charset/internal/CharsetTable.h"
#include "varnik/services/charset/internal/IcuConverter.h"
#include "varnik/simd/ByteSet.h"

namespace vk_charset {

class DoubleByteTable {
 public:
  // What stands for no unit: the first byte begins nothing, or not with this second one, which is read again; the pair
  // is one that no character has.
  static constexpr u16 kNoPair = 0xFFFF, kNoCharacter = 0xFFFE;

  /// Returns the table of a charset; null when all places are taken by others, or ICU cannot supply it. Tables are kept
  /// for the lifetime of the process. Any thread may call.
  static DoubleByteTable* of(const CharsetInfo& charset);

  /// Returns the bytes that are no character alone.
  const vk_simd::ByteSet& leads() const { return leads_; }
  /// Returns the unit of a character as far as the table is filled: of `first` alone, or of the pair where `isPair`,
  /// which says that `first` is one of the leads. Where it is not filled, and for a `second` of 0, kNoPair.
  u16 known(u8 first, u8 second, bool isPair) const {
    return units_[rows_[first].load(std::memory_order_acquire) + (second & (0U - u32{isPair}))];
  }
  /// The same for a pair that begins with one of the leads, filling the table where it has to. `icu` is a converter of
  /// the charset.
  u16 pair(u8 first, u8 second, IcuConverter& icu) {
    return isFilled(first) ? known(first, second, true) : pairOfNewRow(first, second, icu);
  }

 private:
  static constexpr u32 kNumLeads = 0x80, kRow = 0x100;
  static constexpr u16 kNoRow = kNumLeads * kRow, kSingles = kNoRow + kRow;

  bool isFilled(u8 lead) const { return rows_[lead].load(std::memory_order_acquire) != kNoRow; }
  bool fillSingles(const char* converter);
  u16 pairOfNewRow(u8 first, u8 second, IcuConverter& icu);

  std::atomic<s32> id_;                   // the charset's; 0: the place is free, kTaken: it is being taken
  std::atomic<bool> filling_[kNumLeads];  // a row is filled by one thread
  std::atomic<u16> rows_[kRow];           // by first byte: where its row begins; of a single, where its unit is
  vk_simd::ByteSet leads_;
  u16 units_[kSingles + kRow];  // the rows of the leads, a row of kNoPair for those not filled, the singles
};

}  // namespace vk_charset
