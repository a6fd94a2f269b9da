// For AVX2 kernels that drop bytes: a block of 32 is written without those that go.
#pragma once

#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>

#include <array>

#include "varnik/services/memory/Types.h"

namespace vk_simd {

// For each set of eight bytes that go (bit i for byte i): the indexes of those that stay, as a shuffle wants them.
inline constexpr auto kStaying = [] {
  std::array<std::array<u8, 8>, 256> table{};
  for (u32 going = 0; going < 256; ++going)
    for (u32 i = 0, kept = 0; i < 8; ++i)
      if ((going >> i & 1) == 0) table[going][kept++] = static_cast<u8>(i);
  return table;
}();

// Writes the bytes of the low half of `eight` that stay; eight bytes are stored whatever stays.
[[VARNIK_AVX2]] inline void putStaying8(u8* out, __m128i eight, u32 going) {
  const __m128i order = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kStaying[going].data()));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(eight, order));
}

// The block with byte `gone` closed up; with 32, all of it.
[[VARNIK_AVX2]] inline __m256i closeUp(__m256i block, u32 gone) {
  const __m256i indexes = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21,
                                           22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
  const __m256i below = _mm256_cmpgt_epi8(_mm256_set1_epi8(static_cast<char>(gone)), indexes);
  const __m256i moved = _mm256_alignr_epi8(_mm256_permute2x128_si256(block, block, 0x81), block, 1);
  return _mm256_blendv_epi8(moved, block, below);
}

/// Writes the bytes of a block of 32 to `out` but for those whose bit in `going` is set; returns how many stay. All
/// stores lie within the 32 bytes at `out`.
[[VARNIK_AVX2]] inline u32 putStaying(u8* out, __m256i block, u32 going) {
  if ((going & (going - 1)) == 0) {  // one byte goes, or none: much text is all like that, and either costs the same
    const u32 count = static_cast<u32>(__builtin_popcount(going));
    const u32 gone = count != 0 ? static_cast<u32>(__builtin_ctz(going)) : 32;
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), closeUp(block, gone));
    return 32 - count;
  }
  // Each quarter's place follows from one count, not from the quarter before it.
  const __m128i low = _mm256_castsi256_si128(block), high = _mm256_extracti128_si256(block, 1);
  putStaying8(out, low, going & 0xFF);
  putStaying8(out + 8 - __builtin_popcount(going & 0xFF), _mm_unpackhi_epi64(low, low), going >> 8 & 0xFF);
  putStaying8(out + 16 - __builtin_popcount(going & 0xFFFF), high, going >> 16 & 0xFF);
  putStaying8(out + 24 - __builtin_popcount(going & 0xFFFFFF), _mm_unpackhi_epi64(high, high), going >> 24);
  return 32 - static_cast<u32>(__builtin_popcount(going));
}

}  // namespace vk_simd
#endif
