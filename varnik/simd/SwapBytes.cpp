#include "varnik/simd/SwapBytes.h"

#include <utility>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

void swapPairsScalar(u8* data, u32 n) {
  for (u32 i = 0; i < n; i += 2) std::swap(data[i], data[i + 1]);
}

void swapFoursScalar(u8* data, u32 n) {
  for (u32 i = 0; i < n; i += 4) {
    std::swap(data[i], data[i + 3]);
    std::swap(data[i + 1], data[i + 2]);
  }
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline void shuffle(u8* p, __m256i order) {
  auto* const block = reinterpret_cast<__m256i*>(p);
  _mm256_storeu_si256(block, _mm256_shuffle_epi8(_mm256_loadu_si256(block), order));
}

// Shuffles the whole blocks of data[0, n); returns how many bytes they are.
[[VARNIK_AVX2]] inline u32 shuffleBlocks(u8* data, u32 n, __m128i order) {
  const __m256i both = _mm256_broadcastsi128_si256(order);
  u32 i = 0;
  for (; n - i >= 64; i += 64) {
    shuffle(data + i, both);
    shuffle(data + i + 32, both);
  }
  if (n - i < 32) return i;
  shuffle(data + i, both);
  return i + 32;
}

}  // namespace

[[VARNIK_AVX2]] void swapPairsAvx2(u8* data, u32 n) {
  const u32 done = shuffleBlocks(data, n, _mm_setr_epi8(1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14));
  if (done < n) swapPairsScalar(data + done, n - done);
}

[[VARNIK_AVX2]] void swapFoursAvx2(u8* data, u32 n) {
  const u32 done = shuffleBlocks(data, n, _mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12));
  if (done < n) swapFoursScalar(data + done, n - done);
}
#endif

void swapPairs(u8* data, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return swapPairsAvx2(data, n);
#endif
  swapPairsScalar(data, n);
}

void swapFours(u8* data, u32 n) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return swapFoursAvx2(data, n);
#endif
  swapFoursScalar(data, n);
}

}  // namespace vk_simd
