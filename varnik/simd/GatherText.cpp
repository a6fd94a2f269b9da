#include "varnik/simd/GatherText.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

u32 gatherTextScalar(const char* in, u32 n, char* out, u32 most, u32& gathered) {
  u32 i = 0;
  for (gathered = 0; i < n && gathered < most; ++i) {
    if (in[i] == '=' || in[i] == '&') break;
    out[gathered] = in[i];
    gathered += isWhiteSpace(in[i]) ? 0 : 1;
  }
  return i;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline u32 maskOf(__m256i hits) {
  return static_cast<u32>(_mm256_movemask_epi8(hits));
}
[[VARNIK_AVX2]] inline __m256i equal(__m256i block, char c) {
  return _mm256_cmpeq_epi8(block, _mm256_set1_epi8(c));
}
[[VARNIK_AVX2]] inline __m256i whiteSpace(__m256i block) {
  const __m256i fromTab = _mm256_sub_epi8(block, _mm256_set1_epi8('\t'));
  const __m256i lineEnds = _mm256_cmpeq_epi8(_mm256_min_epu8(fromTab, _mm256_set1_epi8('\r' - '\t')), fromTab);
  return _mm256_or_si256(lineEnds, equal(block, ' '));
}

}  // namespace

// Stores every block whole and counts only what stands before its first hit; a run of white space is stepped over, and
// the next block begins behind it. White space in encoded text comes at the ends of lines, so the blocks are few.
[[VARNIK_AVX2]] u32 gatherTextAvx2(const char* in, u32 n, char* out, u32 most, u32& gathered) {
  u32 i = 0, count = 0;
  while (n - i >= 32 && most - count >= 32) {
    const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + i));
    const __m256i blanks = whiteSpace(block);
    const u32 hits = maskOf(_mm256_or_si256(blanks, _mm256_or_si256(equal(block, '='), equal(block, '&'))));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + count), block);
    if (hits == 0) {
      i += 32;
      count += 32;
      continue;
    }
    const u32 before = static_cast<u32>(__builtin_ctz(hits));
    const u32 run = static_cast<u32>(__builtin_ctzll(~(u64{maskOf(blanks)} >> before)));
    count += before;
    i += before + run;
    if (run == 0) {
      gathered = count;
      return i;
    }
  }
  u32 rest = 0;
  i += gatherTextScalar(in + i, n - i, out + count, most - count, rest);
  gathered = count + rest;
  return i;
}
#endif

u32 gatherText(const char* in, u32 n, char* out, u32 most, u32& gathered) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return gatherTextAvx2(in, n, out, most, gathered);
#endif
  return gatherTextScalar(in, n, out, most, gathered);
}

}  // namespace vk_simd
