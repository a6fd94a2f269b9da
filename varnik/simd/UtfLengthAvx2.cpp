// The length of a valid text in another form, from counts of the units of each size.
#include "varnik/simd/internal/UtfAvx2.h"

#if VARNIK_HAVE_AVX2
#include <algorithm>

namespace vk_simd {
namespace {

constexpr u32 kBlock = 32;

[[VARNIK_AVX2]] inline u64 sumOf64(__m256i sums) {
  alignas(32) u64 each[4];
  _mm256_store_si256(reinterpret_cast<__m256i*>(each), sums);
  return each[0] + each[1] + each[2] + each[3];
}

// How often `data` is a byte that begins a character, and how often one that begins a character of four bytes.
[[VARNIK_AVX2]] u64 unitsOfUtf8(const u8* data, u32 blocks, bool countFours) {
  const __m256i zero = _mm256_setzero_si256();
  __m256i total = zero;
  while (blocks != 0) {
    __m256i counts = zero;  // a byte a lane: it holds the counts of 127 blocks
    const u32 some = std::min(blocks, 127u);
    for (u32 i = 0; i < some; ++i, data += kBlock) {
      const __m256i block = loadBlock(data);
      counts = _mm256_sub_epi8(counts, _mm256_cmpgt_epi8(block, _mm256_set1_epi8(-65)));
      if (!countFours) continue;
      const __m256i four = _mm256_set1_epi8(static_cast<s8>(0xF0));
      counts = _mm256_sub_epi8(counts, _mm256_cmpeq_epi8(_mm256_max_epu8(block, four), block));
    }
    total = _mm256_add_epi64(total, _mm256_sad_epu8(counts, zero));
    blocks -= some;
  }
  return sumOf64(total);
}

// The bytes that UTF-16 units take in UTF-8: three, but one for ASCII and two below U+0800 and for half a pair.
template <bool kSwap>
[[VARNIK_AVX2]] u64 utf8OfUtf16(const u8* data, u32 blocks) {
  const auto mask = [](u32 bits) { return static_cast<s16>(kSwap ? __builtin_bswap16(static_cast<u16>(bits)) : bits); };
  const __m256i zero = _mm256_setzero_si256(), ones = _mm256_set1_epi16(1);
  const __m256i above7 = _mm256_set1_epi16(mask(0xFF80)), above11 = _mm256_set1_epi16(mask(0xF800));
  const __m256i surrogate = _mm256_set1_epi16(mask(0xD800));
  u64 saved = 0;
  for (u32 done = 0; done < blocks;) {
    __m256i counts = zero;  // a unit a lane, down to -2 a block
    const u32 some = std::min(blocks - done, 16'000u);
    for (u32 i = 0; i < some; ++i) {
      const __m256i block = loadBlock(data + std::size_t{kBlock} * (done + i));
      const __m256i high = _mm256_and_si256(block, above11);
      counts = _mm256_add_epi16(counts, _mm256_cmpeq_epi16(_mm256_and_si256(block, above7), zero));
      counts = _mm256_add_epi16(counts, _mm256_cmpeq_epi16(high, zero));
      counts = _mm256_add_epi16(counts, _mm256_cmpeq_epi16(high, surrogate));
    }
    alignas(32) s32 sums[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(sums), _mm256_madd_epi16(counts, ones));
    for (const s32 sum : sums) saved += static_cast<u64>(-s64{sum});
    done += some;
  }
  return u64{blocks} * 48 - saved;
}

template <bool kSwap>
[[VARNIK_AVX2]] u64 utf8OfUtf32(const u8* data, u32 blocks) {
  const __m128i order = _mm_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3);
  const __m256i swap = _mm256_broadcastsi128_si256(order);
  __m256i counts = _mm256_setzero_si256();  // at most 3 a block: no text has blocks enough to pass a lane
  for (u32 i = 0; i < blocks; ++i) {
    __m256i block = loadBlock(data + std::size_t{kBlock} * i);
    if constexpr (kSwap) block = _mm256_shuffle_epi8(block, swap);
    for (const s32 least : {0x80, 0x800, 0x10000}) {
      const __m256i reached = _mm256_cmpeq_epi32(_mm256_max_epu32(block, _mm256_set1_epi32(least)), block);
      counts = _mm256_sub_epi32(counts, reached);
    }
  }
  alignas(32) u32 sums[8];
  _mm256_store_si256(reinterpret_cast<__m256i*>(sums), counts);
  u64 bytes = u64{blocks} * 8;
  for (const u32 sum : sums) bytes += sum;
  return bytes;
}

}  // namespace

[[VARNIK_AVX2]] u64 utfLengthIfValidAvx2(Utf from, Utf to, const u8* data, u32 n) {
  const u32 blocks = n / kBlock;
  u64 length = 0;
  if (from == Utf::k8 && (to == Utf::k16Le || to == Utf::k16Be)) {
    length = 2 * unitsOfUtf8(data, blocks, true);
  } else if (from == Utf::k8 && to != Utf::k8) {
    length = 4 * unitsOfUtf8(data, blocks, false);
  } else if (from == Utf::k16Le && to == Utf::k8) {
    length = utf8OfUtf16<false>(data, blocks);
  } else if (from == Utf::k16Be && to == Utf::k8) {
    length = utf8OfUtf16<true>(data, blocks);
  } else if (from == Utf::k32Le && to == Utf::k8) {
    length = utf8OfUtf32<false>(data, blocks);
  } else if (from == Utf::k32Be && to == Utf::k8) {
    length = utf8OfUtf32<true>(data, blocks);
  } else {
    return utfLengthIfValidScalar(from, to, data, n);
  }
  return length + utfLengthIfValidScalar(from, to, data + std::size_t{kBlock} * blocks, n - blocks * kBlock);
}

}  // namespace vk_simd
#endif
