#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// A search for pattern[0, m) in data[0, n) that can go on behind an occurrence. No table, no allocation; both areas
/// stay the caller's.
///
/// It begins as the C library's search for the pattern's first byte, which nothing outruns while that byte is rare.
/// Once candidates come too often it looks at two bytes of the pattern at 64 places at once. Which two follows the
/// data: the byte at which the last false candidate failed takes the place of the older one, so a pattern whose rare
/// byte stands anywhere finds it, and a run of one letter has no candidates.
class BytesFinder {
 public:
  /// REQUIRES: 1 <= m <= n.
  BytesFinder(const u8* data, u32 n, const u8* pattern, u32 m)
      : data_(data), pattern_(pattern), n_(n), m_(m), places_(n - m + 1), newer_(m - 1) {}

  /// Returns the index of the first occurrence at or after `from`, or `n` when there is none.
  u32 next(u32 from);

  u32 nextScalar(u32 from) const;
#if VARNIK_HAVE_AVX2
  u32 nextAvx2(u32 from);
#elif VARNIK_HAVE_NEON
  u32 nextNeon(u32 from) const;
#endif

 private:
  u32 nextByte(u32 from) const;
  u32 candidates32(u32 i) const;
  void lookOn();
  bool standsAt(u32 i);
  u32 nextByPairs(u32 from);

  const u8 *data_, *pattern_;
  u32 n_, m_;
  u32 places_;             // the indexes at which the whole pattern fits are those below
  u32 older_ = 0, newer_;  // the two bytes of the pattern that are looked at
  u32 misses_ = 0;         // false candidates that the search for the first byte has met
  u32 seen_ = 0;           // the places below have been looked at for both bytes
  u32 block_ = 0;          // the place that the lowest bit of bits_ stands for
  u64 bits_ = 0;           // candidates among the places looked at last, without those that were tried
};

/// Returns the index of the first occurrence, or `n`. REQUIRES: 1 <= m <= n.
u32 findBytes(const u8* data, u32 n, const u8* pattern, u32 m);

inline u32 findBytesScalar(const u8* data, u32 n, const u8* pattern, u32 m) {
  return BytesFinder(data, n, pattern, m).nextScalar(0);
}
#if VARNIK_HAVE_AVX2
u32 findBytesAvx2(const u8* data, u32 n, const u8* pattern, u32 m);
#endif

/// Returns the index of the first byte at which a[0, n) and b[0, n) differ, or `n` when they are equal.
u32 mismatch(const u8* a, const u8* b, u32 n);

u32 mismatchScalar(const u8* a, const u8* b, u32 n);
#if VARNIK_HAVE_AVX2
u32 mismatchAvx2(const u8* a, const u8* b, u32 n);
#elif VARNIK_HAVE_NEON
u32 mismatchNeon(const u8* a, const u8* b, u32 n);
#endif

}  // namespace vk_simd
