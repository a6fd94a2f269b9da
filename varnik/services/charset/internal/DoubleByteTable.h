// The table of a charset of ASCII bytes and pairs, filled from ICU's converter a lead byte at a time, as they come up.
#pragma once

#include <atomic>

#include "varnik/services/charset/internal/CharsetTable.h"
#include "varnik/services/charset/internal/IcuConverter.h"

namespace vk_charset {

class DoubleByteTable {
 public:
  // What stands for no unit: the first byte begins nothing, or not with this second one, which is read again; the pair
  // is one that no character has.
  static constexpr u16 kNoPair = 0xFFFF, kNoCharacter = 0xFFFE;

  /// Returns the table of a charset; null when all places are taken by others, or ICU cannot supply it. Tables are kept
  /// for the lifetime of the process. Any thread may call.
  static DoubleByteTable* of(const CharsetInfo& charset);

  /// Returns the unit of a byte from 0x80 on that is a character alone; kNoPair for others.
  u16 single(u8 byte) const { return single_[byte & 0x7F]; }
  /// Returns the unit of a pair whose first byte is from 0x80 on. `icu` is a converter of the charset.
  u16 pair(u8 first, u8 second, IcuConverter& icu) {
    const u32 row = first & 0x7F;
    if (rows_[row].load(std::memory_order_acquire) == kReady) return units_[row][second];
    return pairOfNewRow(row, second, icu);
  }

 private:
  enum State : u8 { kUnknown, kFilling, kReady };

  bool fillSingles(const char* converter);
  u16 pairOfNewRow(u32 row, u8 second, IcuConverter& icu);

  std::atomic<s32> id_;         // the charset's; 0: the place is free, kTaken: it is being taken
  std::atomic<u8> rows_[0x80];  // a State a lead byte
  u16 single_[0x80];
  u16 units_[0x80][0x100];
};

}  // namespace vk_charset
