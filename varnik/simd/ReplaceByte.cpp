#include "varnik/simd/ReplaceByte.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

void replaceByteScalar(u8* data, u32 n, u8 from, u8 to) {
  for (u32 i = 0; i < n; ++i) data[i] = data[i] == from ? to : data[i];
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline void replace32(u8* data, __m256i from, __m256i to) {
  auto* const at = reinterpret_cast<__m256i*>(data);
  const __m256i block = _mm256_loadu_si256(at);
  _mm256_storeu_si256(at, _mm256_blendv_epi8(block, to, _mm256_cmpeq_epi8(block, from)));
}

}  // namespace

[[VARNIK_AVX2]] void replaceByteAvx2(u8* data, u32 n, u8 from, u8 to) {
  const __m256i old = _mm256_set1_epi8(static_cast<char>(from)), now = _mm256_set1_epi8(static_cast<char>(to));
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    replace32(data + i, old, now);
    replace32(data + i + 32, old, now);
  }
  if (n - i >= 32) {
    replace32(data + i, old, now);
    i += 32;
  }
  if (i < n) replaceByteScalar(data + i, n - i, from, to);
}
#endif

#if VARNIK_HAVE_AVX512
[[VARNIK_AVX512]] void replaceByteAvx512(u8* data, u32 n, u8 from, u8 to) {
  const __m512i old = _mm512_set1_epi8(static_cast<char>(from)), now = _mm512_set1_epi8(static_cast<char>(to));
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    const __m512i block = _mm512_loadu_si512(data + i);
    _mm512_storeu_si512(data + i, _mm512_mask_mov_epi8(block, _mm512_cmpeq_epi8_mask(block, old), now));
  }
  if (i == n) return;
  const u64 rest = _bzhi_u64(~u64{0}, n - i);
  const __m512i block = _mm512_maskz_loadu_epi8(rest, data + i);
  _mm512_mask_storeu_epi8(data + i, rest & _mm512_cmpeq_epi8_mask(block, old), now);
}
#endif

void replaceByte(u8* data, u32 n, u8 from, u8 to) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return replaceByteAvx512(data, n, from, to);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return replaceByteAvx2(data, n, from, to);
#endif
  replaceByteScalar(data, n, from, to);
}

}  // namespace vk_simd
