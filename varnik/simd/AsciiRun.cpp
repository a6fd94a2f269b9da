#include "varnik/simd/AsciiRun.h"

#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

u32 asciiRunScalar(const u8* data, u32 n) {
  u32 i = 0;
  for (; n - i >= 8; i += 8) {
    u64 word;
    std::memcpy(&word, data + i, 8);
    if ((word & 0x8080808080808080) != 0) break;
  }
  while (i < n && data[i] < 0x80) ++i;
  return i;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

[[VARNIK_AVX2]] inline bool anyHigh(const u8* p) {
  const __m256i a = _mm256_or_si256(load(p), load(p + 32)), b = _mm256_or_si256(load(p + 64), load(p + 96));
  return _mm256_movemask_epi8(_mm256_or_si256(a, b)) != 0;
}

// Whether 32 to 128 bytes are all ASCII: blocks from either end, which may overlap.
[[VARNIK_AVX2]] inline bool isAscii(const u8* p, u32 n) {
  __m256i any = _mm256_or_si256(load(p), load(p + n - 32));
  if (n > 64) any = _mm256_or_si256(any, _mm256_or_si256(load(p + 32), load(p + n - 64)));
  return _mm256_movemask_epi8(any) == 0;
}

}  // namespace

[[VARNIK_AVX2]] u32 asciiRunAvx2(const u8* data, u32 n) {
  constexpr u32 kLong = 256;  // from here on it pays to read where no load crosses a cache line
  u32 i = 0;
  if (n >= kLong && _mm256_movemask_epi8(load(data)) == 0)
    i = 32 - static_cast<u32>(reinterpret_cast<std::uintptr_t>(data) % 32);
  while (n - i > 128 && !anyHigh(data + i)) i += 128;
  if (n - i >= 32 && n - i <= 128 && isAscii(data + i, n - i)) return n;
  for (; n - i >= 32; i += 32)
    if (const u32 high = static_cast<u32>(_mm256_movemask_epi8(load(data + i))); high != 0)
      return i + static_cast<u32>(__builtin_ctz(high));
  return i + asciiRunScalar(data + i, n - i);
}
#endif

#if VARNIK_HAVE_AVX512
// Long runs only, whole cache lines at a time.
[[VARNIK_AVX512]] u32 asciiRunAvx512(const u8* data, u32 n) {
  constexpr u32 kLine = 64, kBlock = 4 * kLine, kWorth = 2 * kBlock;
  if (n < kWorth || _mm512_movepi8_mask(_mm512_loadu_si512(data)) != 0) return asciiRunAvx2(data, n);
  u32 i = kLine - static_cast<u32>(reinterpret_cast<std::uintptr_t>(data) % kLine);
  for (; n - i >= kBlock; i += kBlock) {
    const u8* const p = data + i;
    const __m512i a = _mm512_or_si512(_mm512_load_si512(p), _mm512_load_si512(p + kLine));
    const __m512i b = _mm512_or_si512(_mm512_load_si512(p + 2 * kLine), _mm512_load_si512(p + 3 * kLine));
    if (_mm512_movepi8_mask(_mm512_or_si512(a, b)) != 0) break;
  }
  return i + asciiRunAvx2(data + i, n - i);
}
#endif

u32 asciiRun(const u8* data, u32 n) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return asciiRunAvx512(data, n);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return asciiRunAvx2(data, n);
#elif VARNIK_HAVE_NEON
  return asciiRunNeon(data, n);
#endif
  return asciiRunScalar(data, n);
}

}  // namespace vk_simd
