// Parts of four texts, side by side, for kernels that write several characters for a byte.
#pragma once

#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>

namespace vk_simd {

/// Four vectors, each for four neighbouring bytes of an input.
struct Quarters {
  __m128i at[4];
};

/// Joins bytes 4k to 4k + 3 of each argument, in their order, into at[k].
[[VARNIK_AVX2]] inline Quarters quartersOf(__m128i a, __m128i b, __m128i c, __m128i d) {
  const __m128i abLow = _mm_unpacklo_epi32(a, b), abHigh = _mm_unpackhi_epi32(a, b);
  const __m128i cdLow = _mm_unpacklo_epi32(c, d), cdHigh = _mm_unpackhi_epi32(c, d);
  return {{_mm_unpacklo_epi64(abLow, cdLow), _mm_unpackhi_epi64(abLow, cdLow), _mm_unpacklo_epi64(abHigh, cdHigh),
           _mm_unpackhi_epi64(abHigh, cdHigh)}};
}

}  // namespace vk_simd
#endif
