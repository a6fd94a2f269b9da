#include "varnik/simd/ReplaceByte.h"

#include <cstdint>

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
  constexpr u32 kLong = 256;  // from here on it pays to write where no store crosses a cache line
  u32 i = 0;
  if (n >= kLong) {  // what the first block and the next have in common is replaced twice, which changes nothing
    replace32(data, old, now);
    i = 32 - static_cast<u32>(reinterpret_cast<std::uintptr_t>(data) % 32);
  }
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

void replaceByte(u8* data, u32 n, u8 from, u8 to) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return replaceByteAvx2(data, n, from, to);
#endif
  replaceByteScalar(data, n, from, to);
}

}  // namespace vk_simd
