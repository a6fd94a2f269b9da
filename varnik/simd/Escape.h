#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/ByteSet.h"

namespace vk_simd {

/// What stands for each byte value in an escaped text: one to seven characters, and the set of those that stand for
/// themselves.
struct EscapeTable {
  static constexpr u32 kCount = 7;  // where an entry holds the number of its characters

  ByteSet clean;
  u8 entry[256][8];
};

/// Makes the table of an encoding: the bytes for which `isClean(b)` is true stand for themselves, for the others
/// `escape(b, characters)` writes the characters and returns their number.
template <class Predicate, class Escape>
constexpr EscapeTable escapeTableOf(Predicate isClean, Escape escape) {
  EscapeTable table{byteSetOf(isClean), {}};
  for (u32 b = 0; b < 256; ++b) {
    u8* const entry = table.entry[b];
    entry[0] = static_cast<u8>(b);
    entry[EscapeTable::kCount] =
        isClean(static_cast<u8>(b)) ? u8{1} : static_cast<u8>(escape(static_cast<u8>(b), entry));
  }
  return table;
}

/// Writes from[0, n) escaped to `out` and returns the number of characters. REQUIRES: room for the longest entry `n`
/// times and 8 bytes more, all of which may be written; areas that do not overlap; a result that fits 32 bits.
u32 escapeBytes(const EscapeTable& table, const u8* from, u32 n, u8* out);

u32 escapeBytesScalar(const EscapeTable& table, const u8* from, u32 n, u8* out);
#if VARNIK_HAVE_AVX2
u32 escapeBytesAvx2(const EscapeTable& table, const u8* from, u32 n, u8* out);
#endif

}  // namespace vk_simd
