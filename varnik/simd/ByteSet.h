#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// A set of byte values in the form that a vector looks up by its halves: byte b belongs to it when low[b % 16] and
/// high[b / 16] share a bit. Each bit stands for the rows of 16 values that have the same members.
struct ByteSet {
  u8 low[16];
  u8 high[16];

  constexpr bool has(u8 b) const { return (low[b & 15] & high[b >> 4]) != 0; }
};

/// Makes the set of the bytes for which `has(b)` is true. There is room for 8 kinds of rows: a constant set that has
/// more does not compile. One that is made at run time must not have more; bytes from 0x80 on alone cannot.
template <class Predicate>
constexpr ByteSet byteSetOf(Predicate has) {
  ByteSet set{};
  u32 kinds[8] = {}, numKinds = 0;
  for (u32 row = 0; row < 16; ++row) {
    u32 members = 0;
    for (u32 i = 0; i < 16; ++i)
      if (has(static_cast<u8>(row * 16 + i))) members |= 1U << i;
    if (members == 0) continue;
    u32 kind = 0;
    while (kind < numKinds && kinds[kind] != members) ++kind;
    if (kind == numKinds) kinds[numKinds++] = members;
    set.high[row] = static_cast<u8>(1U << kind);
    for (u32 i = 0; i < 16; ++i)
      if ((members >> i & 1) != 0) set.low[i] = static_cast<u8>(set.low[i] | 1U << kind);
  }
  return set;
}

/// Copies the bytes at the front of from[0, n) that belong to `set` to `out` and returns their count. All of out[0, n)
/// may be written. REQUIRES: the areas do not overlap.
u32 copyRun(const ByteSet& set, const u8* from, u32 n, u8* out);

u32 copyRunScalar(const ByteSet& set, const u8* from, u32 n, u8* out);
#if VARNIK_HAVE_AVX2
u32 copyRunAvx2(const ByteSet& set, const u8* from, u32 n, u8* out);
#endif

/// Returns one bit for each of the first 64, or `n`, bytes, the lowest for the first: 1 for those in the set.
u64 membersAmong(const ByteSet& set, const u8* bytes, u32 n);

u64 membersAmongScalar(const ByteSet& set, const u8* bytes, u32 n);
#if VARNIK_HAVE_AVX2
u64 membersAmongAvx2(const ByteSet& set, const u8* bytes, u32 n);
#endif

}  // namespace vk_simd
