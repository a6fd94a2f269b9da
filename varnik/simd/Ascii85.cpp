#include "varnik/simd/Ascii85.h"

#include <cstddef>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

namespace {

u32 wordAt(const u8* p) {
  return u32{p[0]} << 24 | u32{p[1]} << 16 | u32{p[2]} << 8 | p[3];
}

}  // namespace

u64 ascii85Value(const u8* digits) {
  u64 value = 0;
  bool good = true;
  for (u32 k = 0; k < 5; ++k) {
    good = good && isAscii85Digit(digits[k]);
    value = value * 85 + (digits[k] - u32{'!'});
  }
  return good ? value : ~u64{0};
}

u32 putAscii85Scalar(const u8* from, u32 words, u8* out) {
  u8* p = out;
  for (; words != 0; --words, from += 4) {
    const u32 word = wordAt(from);
    if (word == 0) {
      *p++ = 'z';
    } else {
      putAscii85Digits(word, p);
      p += 5;
    }
  }
  return static_cast<u32>(p - out);
}

Ascii85Run readAscii85Scalar(const u8* text, u32 n, u8* out) {
  Ascii85Run done{0, 0};
  for (; done.chars < n; ++done.words) {
    const bool zeros = text[done.chars] == 'z';
    if (!zeros && n - done.chars < 5) break;
    const u64 value = zeros ? 0 : ascii85Value(text + done.chars);
    if (value > 0xFFFFFFFF) break;
    for (u32 shift = 32; shift != 0;) *out++ = static_cast<u8>(value >> (shift -= 8));
    done.chars += zeros ? 1 : 5;
  }
  return done;
}

#if VARNIK_HAVE_AVX2
namespace {

// A block is six groups, three in each half of a vector.
constexpr u32 kBlockWords = 6, kBlockChars = 30;

[[VARNIK_AVX2]] inline __m256i halvesAt(const u8* low, const u8* high) {
  return _mm256_set_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i*>(high)),
                          _mm_loadu_si128(reinterpret_cast<const __m128i*>(low)));
}
[[VARNIK_AVX2]] inline void storeHalves(__m256i v, u8* low, u8* high) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(low), _mm256_castsi256_si128(v));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(high), _mm256_extracti128_si256(v, 1));
}
[[VARNIK_AVX2]] inline __m256i twice(__m128i v) {
  return _mm256_broadcastsi128_si256(v);
}

// floor(v / 7225) for all 32-bit v: 2434904643 / 2^44 is above 1 / 7225 by so little that it counts for none of them.
[[VARNIK_AVX2]] inline __m256i div7225(__m256i v) {
  const __m256i factor = _mm256_set1_epi64x(2434904643);
  const __m256i even = _mm256_srli_epi64(_mm256_mul_epu32(v, factor), 44);
  const __m256i odd = _mm256_srli_epi64(_mm256_mul_epu32(_mm256_srli_epi64(v, 32), factor), 44);
  return _mm256_or_si256(even, _mm256_slli_epi64(odd, 32));
}

// 24 bytes, of which 28 are read, become 30 characters; 31 are written. False when four bytes are zero.
[[VARNIK_AVX2]] inline bool putBlock(const u8* from, u8* out) {
  const __m256i swap = twice(_mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 3, 2, 1, 0));
  const __m256i v = _mm256_shuffle_epi8(halvesAt(from, from + 12), swap);
  if (_mm256_movemask_epi8(_mm256_cmpeq_epi32(v, _mm256_setzero_si256())) != 0) return false;
  const __m256i square = _mm256_set1_epi32(85 * 85);
  const __m256i upper = div7225(v), first = div7225(upper);
  const __m256i lower = _mm256_sub_epi32(v, _mm256_mullo_epi32(upper, square));
  const __m256i middle = _mm256_sub_epi32(upper, _mm256_mullo_epi32(first, square));
  // Two numbers below 7225 in 16 bits each; 49345 / 2^22 divides such by 85.
  const __m256i pairs = _mm256_or_si256(middle, _mm256_slli_epi32(lower, 16));
  const __m256i high = _mm256_srli_epi16(_mm256_mulhi_epu16(pairs, _mm256_set1_epi16(static_cast<short>(49345))), 6);
  const __m256i low = _mm256_sub_epi16(pairs, _mm256_mullo_epi16(high, _mm256_set1_epi16(85)));
  const __m256i four = _mm256_or_si256(high, _mm256_slli_epi16(low, 8));
  const __m256i placeFour = twice(_mm_setr_epi8(-1, 0, 1, 2, 3, -1, 4, 5, 6, 7, -1, 8, 9, 10, 11, -1));
  const __m256i placeFirst = twice(_mm_setr_epi8(0, -1, -1, -1, -1, 4, -1, -1, -1, -1, 8, -1, -1, -1, -1, -1));
  const __m256i digits = _mm256_or_si256(_mm256_shuffle_epi8(four, placeFour), _mm256_shuffle_epi8(first, placeFirst));
  storeHalves(_mm256_add_epi8(digits, _mm256_set1_epi8('!')), out, out + 15);
  return true;
}

// 30 characters, of which 31 are read, become 24 bytes; 28 are written. False for a group that is not plain.
[[VARNIK_AVX2]] inline bool readBlock(const u8* text, u8* out) {
  constexpr u32 kUsed = 0x7FFF7FFF;
  const __m256i digits = _mm256_sub_epi8(halvesAt(text, text + 15), _mm256_set1_epi8('!'));
  const __m256i good = _mm256_cmpeq_epi8(_mm256_min_epu8(digits, _mm256_set1_epi8(84)), digits);
  if ((~static_cast<u32>(_mm256_movemask_epi8(good)) & kUsed) != 0) return false;
  const __m256i placeFour = twice(_mm_setr_epi8(0, 1, 2, 3, 5, 6, 7, 8, 10, 11, 12, 13, -1, -1, -1, -1));
  const __m256i placeLast = twice(_mm_setr_epi8(4, -1, -1, -1, 9, -1, -1, -1, 14, -1, -1, -1, -1, -1, -1, -1));
  const __m256i pairs = _mm256_maddubs_epi16(_mm256_shuffle_epi8(digits, placeFour), _mm256_set1_epi32(0x01550155));
  const __m256i four = _mm256_madd_epi16(pairs, _mm256_set1_epi32(1 << 16 | 85 * 85));
  // Up to this much, times 85 and the last digit stay within 32 bits whatever the digit.
  constexpr int kSafe = 50529026;
  if (_mm256_movemask_epi8(_mm256_cmpgt_epi32(four, _mm256_set1_epi32(kSafe))) != 0) return false;
  const __m256i words =
      _mm256_add_epi32(_mm256_mullo_epi32(four, _mm256_set1_epi32(85)), _mm256_shuffle_epi8(digits, placeLast));
  const __m256i swap = twice(_mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, -1, -1, -1, -1));
  storeHalves(_mm256_shuffle_epi8(words, swap), out, out + 12);
  return true;
}

}  // namespace

// A block that is not plain goes group by group, after which blocks are tried again.
[[VARNIK_AVX2]] u32 putAscii85Avx2(const u8* from, u32 words, u8* out) {
  u8* p = out;
  while (words > kBlockWords) {
    if (putBlock(from, p)) {
      p += kBlockChars;
    } else {
      p += putAscii85Scalar(from, kBlockWords, p);
    }
    from += 4 * kBlockWords;
    words -= kBlockWords;
  }
  return static_cast<u32>(p - out) + putAscii85Scalar(from, words, p);
}

[[VARNIK_AVX2]] Ascii85Run readAscii85Avx2(const u8* text, u32 n, u8* out) {
  Ascii85Run done{0, 0};
  while (n - done.chars > kBlockChars) {
    if (readBlock(text + done.chars, out + 4 * std::size_t{done.words})) {
      done.chars += kBlockChars;
      done.words += kBlockWords;
      continue;
    }
    const Ascii85Run block = readAscii85Scalar(text + done.chars, kBlockChars, out + 4 * std::size_t{done.words});
    done.chars += block.chars;
    done.words += block.words;
    if (kBlockChars - block.chars >= 5) return done;
  }
  const Ascii85Run rest = readAscii85Scalar(text + done.chars, n - done.chars, out + 4 * std::size_t{done.words});
  return {done.chars + rest.chars, done.words + rest.words};
}
#endif

u32 putAscii85(const u8* from, u32 words, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return putAscii85Avx2(from, words, out);
#endif
  return putAscii85Scalar(from, words, out);
}

Ascii85Run readAscii85(const u8* text, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return readAscii85Avx2(text, n, out);
#endif
  return readAscii85Scalar(text, n, out);
}

}  // namespace vk_simd
