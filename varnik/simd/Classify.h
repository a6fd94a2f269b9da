// The AVX2 lookup of a ByteSet, for the kernels that stand on it.
#pragma once

#include "varnik/simd/ByteSet.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>

namespace vk_simd {

/// The two tables of a set, in registers.
struct SetTables {
  __m256i low, high;
};

[[VARNIK_AVX2]] inline SetTables tablesOf(const ByteSet& set) {
  return {_mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(set.low))),
          _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(set.high)))};
}

/// Returns one bit for each of the 32 bytes that is not in the set.
[[VARNIK_AVX2]] inline u32 outsiders(const SetTables& tables, __m256i bytes) {
  const __m256i nibble = _mm256_set1_epi8(15);
  const __m256i low = _mm256_shuffle_epi8(tables.low, _mm256_and_si256(bytes, nibble));
  const __m256i high = _mm256_shuffle_epi8(tables.high, _mm256_and_si256(_mm256_srli_epi16(bytes, 4), nibble));
  const __m256i missing = _mm256_cmpeq_epi8(_mm256_and_si256(low, high), _mm256_setzero_si256());
  return static_cast<u32>(_mm256_movemask_epi8(missing));
}

/// The same for 16 bytes.
[[VARNIK_AVX2]] inline u32 outsiders16(const SetTables& tables, __m128i bytes) {
  return outsiders(tables, _mm256_castsi128_si256(bytes)) & 0xFFFF;
}

}  // namespace vk_simd
#endif
