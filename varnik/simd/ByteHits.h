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
/// A bit for each of the 32 bytes at `p` that equals `value`.
[[VARNIK_AVX2]] inline u32 hits32(const u8* p, u8 value) {
  const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
  return static_cast<u32>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(block, _mm256_set1_epi8(static_cast<char>(value)))));
}

template <class OnHit>
[[VARNIK_AVX2]] void eachHitAvx2(const u8* data, u32 n, u8 value, OnHit onHit) {
  u32 i = 0;
  for (; n - i >= 64; i += 64)
    for (u64 bits = hits32(data + i, value) | u64{hits32(data + i + 32, value)} << 32; bits != 0; bits &= bits - 1)
      onHit(i + static_cast<u32>(__builtin_ctzll(bits)));
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
