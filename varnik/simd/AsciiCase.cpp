#include "varnik/simd/AsciiCase.h"

#include <cstddef>
#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

constexpr u32 kBlock = 16;

// Flips the case of the letters from `first` on.
u32 flipBlocks(u8* units, u32 n, u16 first) {
  u32 done = 0;
  for (; n - done >= kBlock; done += kBlock) {
    u16 block[kBlock];
    u8* const at = units + std::size_t{2} * done;
    std::memcpy(block, at, sizeof block);
    u32 all = 0;
    for (const u16 unit : block) all |= unit;
    if (all >= 0x80) break;
    for (u16& unit : block) unit = static_cast<u16>(unit ^ (static_cast<u16>(unit - first) < 26 ? 0x20 : 0));
    std::memcpy(at, block, sizeof block);
  }
  return done;
}

}  // namespace

u32 upperAsciiBlocksScalar(u8* units, u32 n) {
  return flipBlocks(units, n, 'a');
}
u32 lowerAsciiBlocksScalar(u8* units, u32 n) {
  return flipBlocks(units, n, 'A');
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i flip(__m256i units, __m256i belowFirst, __m256i behindLast) {
  const __m256i isLetter =
      _mm256_and_si256(_mm256_cmpgt_epi16(units, belowFirst), _mm256_cmpgt_epi16(behindLast, units));
  return _mm256_xor_si256(units, _mm256_and_si256(isLetter, _mm256_set1_epi16(0x20)));
}

[[VARNIK_AVX2]] inline u32 flipBlocksAvx2(u8* units, u32 n, char first) {
  const __m256i notAscii = _mm256_set1_epi16(static_cast<s16>(0xFF80));
  const __m256i belowFirst = _mm256_set1_epi16(static_cast<s16>(first - 1));
  const __m256i behindLast = _mm256_set1_epi16(static_cast<s16>(first + 26));
  __m256i* at = reinterpret_cast<__m256i*>(units);
  u32 done = 0;
  for (; n - done >= 2 * kBlock; done += 2 * kBlock, at += 2) {
    const __m256i a = _mm256_loadu_si256(at), b = _mm256_loadu_si256(at + 1);
    if (!_mm256_testz_si256(_mm256_or_si256(a, b), notAscii)) break;
    _mm256_storeu_si256(at, flip(a, belowFirst, behindLast));
    _mm256_storeu_si256(at + 1, flip(b, belowFirst, behindLast));
  }
  for (; n - done >= kBlock; done += kBlock, ++at) {
    const __m256i a = _mm256_loadu_si256(at);
    if (!_mm256_testz_si256(a, notAscii)) break;
    _mm256_storeu_si256(at, flip(a, belowFirst, behindLast));
  }
  return done;
}

}  // namespace

[[VARNIK_AVX2]] u32 upperAsciiBlocksAvx2(u8* units, u32 n) {
  return flipBlocksAvx2(units, n, 'a');
}
[[VARNIK_AVX2]] u32 lowerAsciiBlocksAvx2(u8* units, u32 n) {
  return flipBlocksAvx2(units, n, 'A');
}
#endif

u32 upperAsciiBlocks(u8* units, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return upperAsciiBlocksAvx2(units, n);
#endif
  return upperAsciiBlocksScalar(units, n);
}
u32 lowerAsciiBlocks(u8* units, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return lowerAsciiBlocksAvx2(units, n);
#endif
  return lowerAsciiBlocksScalar(units, n);
}

}  // namespace vk_simd
