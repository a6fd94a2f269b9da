#include "varnik/simd/Lines.h"

#include <algorithm>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

constexpr u8 kCr = '\r', kLf = '\n';

bool isLineEnd(u8 c) {
  return c == kCr || c == kLf;
}

// Whether in each of the `n` neighbouring pairs from `p` on a CR comes first exactly when an LF comes second.
bool pairsAgree(const u8* p, u32 n) {
  u32 wrong = 0;
  for (u32 i = 0; i < n; ++i) wrong |= static_cast<u32>((p[i] == kCr) != (p[i + 1] == kLf));
  return wrong == 0;
}

}  // namespace

// Every line end is in a pair when no LF comes first, no CR comes last, and in between each LF stands behind a CR and
// each CR before an LF.
bool hasBareLineEndScalar(const u8* data, u32 n) {
  if (n == 0) return false;
  return data[0] == kLf || data[n - 1] == kCr || !pairsAgree(data, n - 1);
}

u32 behindLastLineEndScalar(const u8* data, u32 from, u32 to) {
  while (to > from && !isLineEnd(data[to - 1])) --to;
  return to;
}

bool oddBytesAreZeroScalar(const u8* data, u32 n) {
  for (u32 i = 0; i < n / 2; ++i)
    if (data[2 * i + 1] != 0) return false;
  return true;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
[[VARNIK_AVX2]] inline __m256i equalTo(__m256i block, u8 value) {
  return _mm256_cmpeq_epi8(block, _mm256_set1_epi8(static_cast<char>(value)));
}

// Nonzero where, among the 32 pairs from `p` on, a CR comes first without an LF second or the other way round.
[[VARNIK_AVX2]] inline __m256i wrongPairs(const u8* p) {
  return _mm256_xor_si256(equalTo(load(p), kCr), equalTo(load(p + 1), kLf));
}

[[VARNIK_AVX2]] inline u32 lineEnds(const u8* p) {
  const __m256i block = load(p);
  return static_cast<u32>(_mm256_movemask_epi8(_mm256_or_si256(equalTo(block, kCr), equalTo(block, kLf))));
}

[[VARNIK_AVX2]] inline __m256i orOf4(const u8* p) {
  return _mm256_or_si256(_mm256_or_si256(load(p), load(p + 32)), _mm256_or_si256(load(p + 64), load(p + 96)));
}

}  // namespace

[[VARNIK_AVX2]] bool hasBareLineEndAvx2(const u8* data, u32 n) {
  if (n == 0) return false;
  if (data[0] == kLf || data[n - 1] == kCr) return true;
  const u32 pairs = n - 1;
  u32 i = 0;
  for (; pairs - i >= 128; i += 128) {
    const u8* const p = data + i;
    const __m256i wrong = _mm256_or_si256(_mm256_or_si256(wrongPairs(p), wrongPairs(p + 32)),
                                          _mm256_or_si256(wrongPairs(p + 64), wrongPairs(p + 96)));
    if (!_mm256_testz_si256(wrong, wrong)) return true;
  }
  if (pairs < 32) return !pairsAgree(data, pairs);
  for (; pairs - i > 64; i += 32) {
    const __m256i wrong = wrongPairs(data + i);
    if (!_mm256_testz_si256(wrong, wrong)) return true;
  }
  const __m256i wrong = _mm256_or_si256(wrongPairs(data + std::min(i, pairs - 32)), wrongPairs(data + pairs - 32));
  return !_mm256_testz_si256(wrong, wrong);
}

[[VARNIK_AVX2]] u32 behindLastLineEndAvx2(const u8* data, u32 from, u32 to) {
  for (; to > from && to >= 32; to -= 32) {
    const u32 bits = lineEnds(data + to - 32);
    if (bits == 0) continue;
    const u32 behind = to - static_cast<u32>(__builtin_clz(bits));
    return behind > from ? behind : from;
  }
  return to > from ? behindLastLineEndScalar(data, from, to) : from;
}

[[VARNIK_AVX2]] bool oddBytesAreZeroAvx2(const u8* data, u32 n) {
  const __m256i odd = _mm256_set1_epi16(static_cast<s16>(0xFF00));
  u32 i = 0;
  for (; n - i >= 128; i += 128)
    if (!_mm256_testz_si256(orOf4(data + i), odd)) return false;
  for (; n - i >= 32; i += 32)
    if (!_mm256_testz_si256(load(data + i), odd)) return false;
  return oddBytesAreZeroScalar(data + i, n - i);
}
#endif

#if VARNIK_HAVE_AVX512
// An LF must stand behind each CR and nowhere else; what lies behind the data reads as zero bytes, so that a last CR
// fails.
[[VARNIK_AVX512]] bool hasBareLineEndAvx512(const u8* data, u32 n) {
  const __m512i cr = _mm512_set1_epi8(kCr), lf = _mm512_set1_epi8(kLf);
  u64 carried = 0;  // 1 behind a CR
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    const __m512i block = _mm512_loadu_si512(data + i);
    const u64 returns = _mm512_cmpeq_epi8_mask(block, cr), feeds = _mm512_cmpeq_epi8_mask(block, lf);
    if ((returns << 1 | carried) != feeds) return true;
    carried = returns >> 63;
  }
  const __m512i rest = _mm512_maskz_loadu_epi8(_bzhi_u64(~u64{0}, n - i), data + i);
  return (_mm512_cmpeq_epi8_mask(rest, cr) << 1 | carried) != _mm512_cmpeq_epi8_mask(rest, lf);
}
#endif

bool hasBareLineEnd(const u8* data, u32 n) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return hasBareLineEndAvx512(data, n);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return hasBareLineEndAvx2(data, n);
#endif
  return hasBareLineEndScalar(data, n);
}

u32 behindLastLineEnd(const u8* data, u32 from, u32 to) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return behindLastLineEndAvx2(data, from, to);
#endif
  return behindLastLineEndScalar(data, from, to);
}

bool oddBytesAreZero(const u8* data, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return oddBytesAreZeroAvx2(data, n);
#endif
  return oddBytesAreZeroScalar(data, n);
}

}  // namespace vk_simd
