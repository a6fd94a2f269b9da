#include "varnik/simd/Copy.h"

#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

#if VARNIK_HAVE_AVX2
// Both loads of a step stand before its stores: compilers take a loop of one load and one store for a memcpy, and turn
// it into a call of the very function that is avoided here.
[[VARNIK_AVX2]] void copyBytesAvx2(u8* to, const u8* from, u32 n) {
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + i + 32));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i), a);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + i + 32), b);
  }
  if (i < n) std::memcpy(to + i, from + i, n - i);
}
#endif

}  // namespace vk_simd
