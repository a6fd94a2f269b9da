// The AVX2 forms of the conversions, and what their files share.
//
// A kernel takes whole blocks, and leaves a block with something bad in it, or with surrogates, to the scalar code. The
// last bytes of a text are copied to a block of their own that is filled up with zero bytes; a zero byte is a character
// of length one in every form, so what the filling became is subtracted again.
#pragma once

#include "varnik/simd/Cpu.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>

#include "varnik/simd/internal/UtfForms.h"

namespace vk_simd {

[[VARNIK_AVX2]] inline __m256i loadBlock(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline void storeBlock(u8* p, __m256i block) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), block);
}
[[VARNIK_AVX2]] inline void storeHalf(u8* p, __m128i half) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), half);
}
[[VARNIK_AVX2]] inline __m128i loadHalf(const void* p) {
  return _mm_loadu_si128(static_cast<const __m128i*>(p));
}
[[VARNIK_AVX2]] inline bool isClear(__m256i block, __m256i bits) {
  return _mm256_testz_si256(block, bits) != 0;
}
[[VARNIK_AVX2]] inline u32 bitsOf(__m256i bytes) {
  return static_cast<u32>(_mm256_movemask_epi8(bytes));
}

template <class From>
[[VARNIK_AVX2]] void convertToUtf8Avx2(UtfCursor& c);
template <class To>
[[VARNIK_AVX2]] void convertFromUtf8Avx2(UtfCursor& c);

}  // namespace vk_simd
#endif
