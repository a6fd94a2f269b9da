#pragma once

#include <cstring>

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

// eachHit calls onHit(i) for each index i of a byte `value` in data[0, n), in order. `onHit` may change the bytes up to
// `i`; what it does to those behind shows or not, as they are looked at in blocks.

template <class OnHit>
void eachHitScalar(const u8* data, u32 n, u8 value, OnHit onHit) {
  for (u32 i = 0; i < n; ++i) {
    const void* hit = std::memchr(data + i, value, n - i);
    if (!hit) return;
    i = static_cast<u32>(static_cast<const u8*>(hit) - data);
    onHit(i);
  }
}

#if VARNIK_HAVE_AVX2
[[VARNIK_AVX2]] inline __m256i hits32(const u8* p, u8 value) {
  const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
  return _mm256_cmpeq_epi8(block, _mm256_set1_epi8(static_cast<char>(value)));
}
[[VARNIK_AVX2]] inline u32 bitsOf(__m256i hits) {
  return static_cast<u32>(_mm256_movemask_epi8(hits));
}

template <class OnHit>
[[VARNIK_AVX2]] void eachHitAvx2(const u8* data, u32 n, u8 value, OnHit onHit) {
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    const __m256i low = hits32(data + i, value), high = hits32(data + i + 32, value);
    if (bitsOf(_mm256_or_si256(low, high)) == 0) continue;
    for (u64 bits = bitsOf(low) | u64{bitsOf(high)} << 32; bits != 0; bits &= bits - 1)
      onHit(i + static_cast<u32>(__builtin_ctzll(bits)));
  }
  eachHitScalar(data + i, n - i, value, [i, &onHit](u32 hit) { onHit(i + hit); });
}
#endif

template <class OnHit>
void eachHit(const u8* data, u32 n, u8 value, OnHit onHit) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return eachHitAvx2(data, n, value, onHit);
#endif
  eachHitScalar(data, n, value, onHit);
}

}  // namespace vk_simd
