#include "varnik/simd/ReplaceByte.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

void replaceByteScalar(u8* data, u32 n, u8 from, u8 to) {
  for (u32 i = 0; i < n; ++i) data[i] = data[i] == from ? to : data[i];
}

#if VARNIK_HAVE_AVX2
[[VARNIK_AVX2]] void replaceByteAvx2(u8* data, u32 n, u8 from, u8 to) {
  const __m256i old = _mm256_set1_epi8(static_cast<char>(from)), now = _mm256_set1_epi8(static_cast<char>(to));
  u32 i = 0;
  for (; n - i >= 32; i += 32) {
    auto* const at = reinterpret_cast<__m256i*>(data + i);
    const __m256i block = _mm256_loadu_si256(at);
    _mm256_storeu_si256(at, _mm256_blendv_epi8(block, now, _mm256_cmpeq_epi8(block, old)));
  }
  replaceByteScalar(data + i, n - i, from, to);
}
#endif

void replaceByte(u8* data, u32 n, u8 from, u8 to) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return replaceByteAvx2(data, n, from, to);
#endif
  replaceByteScalar(data, n, from, to);
}

}  // namespace vk_simd
