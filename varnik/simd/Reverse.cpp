#include "varnik/simd/Reverse.h"

#include <utility>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

void reverseCopyScalar(u8* out, const u8* from, u32 n) {
  for (u32 i = 0; i < n; ++i) out[i] = from[n - 1 - i];
}

void reverseInPlaceScalar(u8* data, u32 n) {
  for (u32 i = 0; i < n / 2; ++i) std::swap(data[i], data[n - 1 - i]);
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i loadReversed(const u8* p) {
  const __m256i order = _mm256_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10,
                                         9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
  const __m256i halves = _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), order);
  return _mm256_permute4x64_epi64(halves, 0x4E);
}
[[VARNIK_AVX2]] inline __m128i loadReversed16(const u8* p) {
  const __m128i order = _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), order);
}
[[VARNIK_AVX2]] inline void store(u8* p, __m256i v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}
[[VARNIK_AVX2]] inline void store16(u8* p, __m128i v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}

// Below 64 bytes two blocks, one from either end, cover everything: both are read before either is written, and where
// they overlap they write the same bytes.
[[VARNIK_AVX2]] void reverseShort(u8* out, const u8* from, u32 n) {
  if (n >= 32) {
    const __m256i head = loadReversed(from), tail = loadReversed(from + n - 32);
    store(out, tail);
    store(out + n - 32, head);
  } else if (n >= 16) {
    const __m128i head = loadReversed16(from), tail = loadReversed16(from + n - 16);
    store16(out, tail);
    store16(out + n - 16, head);
  } else if (out == from) {
    reverseInPlaceScalar(out, n);
  } else {
    reverseCopyScalar(out, from, n);
  }
}

}  // namespace

[[VARNIK_AVX2]] void reverseCopyAvx2(u8* out, const u8* from, u32 n) {
  u32 i = 0;
  for (; n - i > 64; i += 32) store(out + i, loadReversed(from + n - i - 32));
  reverseShort(out + i, from, n - i);
}

[[VARNIK_AVX2]] void reverseInPlaceAvx2(u8* data, u32 n) {
  u32 i = 0;
  for (; n - 2 * i > 64; i += 32) {
    u8* const right = data + n - i - 32;
    const __m256i head = loadReversed(data + i), tail = loadReversed(right);
    store(data + i, tail);
    store(right, head);
  }
  reverseShort(data + i, data + i, n - 2 * i);
}
#endif

void reverseCopy(u8* out, const u8* from, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return reverseCopyAvx2(out, from, n);
#endif
  reverseCopyScalar(out, from, n);
}

void reverseInPlace(u8* data, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return reverseInPlaceAvx2(data, n);
#endif
  reverseInPlaceScalar(data, n);
}

}  // namespace vk_simd
