#include "varnik/simd/Base45.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

namespace {

constexpr u32 kSquare = 45 * 45;

// What a character is worth at each of the three places. One outside the alphabet is worth more than any group may be,
// so that one comparison tells both kinds of bad group.
struct Worth {
  u32 at[3][256];
};
constexpr Worth kWorth = [] {
  Worth worth{};
  for (auto& place : worth.at)
    for (u32& each : place) each = 1U << 20;
  for (u32 i = 0; i < 45; ++i) {
    const u8 c = static_cast<u8>(kBase45Digits[i]);
    worth.at[0][c] = i;
    worth.at[1][c] = i * 45;
    worth.at[2][c] = i * kSquare;
  }
  return worth;
}();

}  // namespace

void putBase45Scalar(const u8* from, u32 pairs, u8* out) {
  for (; pairs != 0; --pairs, from += 2, out += 3) {
    const u32 value = static_cast<u32>(from[0] << 8 | from[1]), upper = value / 45;
    out[0] = static_cast<u8>(kBase45Digits[value % 45]);
    out[1] = static_cast<u8>(kBase45Digits[upper % 45]);
    out[2] = static_cast<u8>(kBase45Digits[upper / 45]);
  }
}

u32 readBase45Scalar(const u8* text, u32 n, u8* out) {
  u32 groups = 0;
  for (; n >= 3; n -= 3, text += 3, ++groups) {
    const u32 value = kWorth.at[0][text[0]] + kWorth.at[1][text[1]] + kWorth.at[2][text[2]];
    if (value > 0xFFFF) break;
    *out++ = static_cast<u8>(value >> 8);
    *out++ = static_cast<u8>(value);
  }
  return groups;
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m256i twice(__m128i v) {
  return _mm256_broadcastsi128_si256(v);
}
[[VARNIK_AVX2]] inline __m128i load16(const void* p) {
  return _mm_loadu_si128(static_cast<const __m128i*>(p));
}

// floor(v / 45) for all 16-bit v: 46604 / 2^21 is above 1 / 45 by so little that it counts for none of them.
[[VARNIK_AVX2]] inline __m256i div45(__m256i v) {
  return _mm256_srli_epi16(_mm256_mulhi_epu16(v, _mm256_set1_epi16(static_cast<short>(46604))), 5);
}

// The characters of digits below 45: a shuffle reads 16 of the alphabet, the row above 15 (31) replaces it.
[[VARNIK_AVX2]] inline __m256i digitChars(__m256i d) {
  const __m256i low = _mm256_shuffle_epi8(twice(load16(kBase45Digits)), d);
  const __m256i middle = _mm256_shuffle_epi8(twice(load16(kBase45Digits + 16)), d);
  const __m256i high = _mm256_shuffle_epi8(
      twice(_mm_setr_epi8('W', 'X', 'Y', 'Z', ' ', '$', '%', '*', '+', '-', '.', '/', ':', 0, 0, 0)), d);
  const __m256i lowOrMiddle = _mm256_blendv_epi8(low, middle, _mm256_cmpgt_epi8(d, _mm256_set1_epi8(15)));
  return _mm256_blendv_epi8(lowOrMiddle, high, _mm256_cmpgt_epi8(d, _mm256_set1_epi8(31)));
}

// The value of each character; 0xFF where it is none. The alphabet is two runs, signs from 0x20 to 0x2F, which are
// looked up by their low half, and the colon.
[[VARNIK_AVX2]] inline __m256i digitValues(__m256i c) {
  const __m256i signs = twice(_mm_setr_epi8(36, -1, -1, -1, 37, 38, -1, -1, -1, -1, 39, 40, -1, 41, 42, 43));
  const __m256i fromZero = _mm256_sub_epi8(c, _mm256_set1_epi8('0')), fromA = _mm256_sub_epi8(c, _mm256_set1_epi8('A'));
  const __m256i isDigit = _mm256_cmpeq_epi8(_mm256_min_epu8(fromZero, _mm256_set1_epi8(9)), fromZero);
  const __m256i isLetter = _mm256_cmpeq_epi8(_mm256_min_epu8(fromA, _mm256_set1_epi8(25)), fromA);
  const __m256i isColon = _mm256_cmpeq_epi8(c, _mm256_set1_epi8(':'));
  const __m256i row = _mm256_sub_epi8(c, _mm256_set1_epi8(0x20));
  const __m256i isSign = _mm256_cmpeq_epi8(_mm256_min_epu8(row, _mm256_set1_epi8(15)), row);
  __m256i value = _mm256_or_si256(_mm256_shuffle_epi8(signs, row), _mm256_xor_si256(isSign, _mm256_set1_epi8(-1)));
  value = _mm256_blendv_epi8(value, fromZero, isDigit);
  value = _mm256_blendv_epi8(value, _mm256_add_epi8(fromA, _mm256_set1_epi8(10)), isLetter);
  return _mm256_blendv_epi8(value, _mm256_set1_epi8(44), isColon);
}

// 16 bytes become 24 characters; 28 are written.
[[VARNIK_AVX2]] inline void put24(const u8* from, u8* out) {
  const __m128i swap = _mm_setr_epi8(1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14);
  const __m128i values = _mm_shuffle_epi8(load16(from), swap);
  // Each number takes 32 bits, its digits the low three bytes.
  const __m256i v = _mm256_cvtepu16_epi32(values), upper = div45(v), top = div45(upper);
  const __m256i fortyFive = _mm256_set1_epi16(45);
  const __m256i low = _mm256_sub_epi16(v, _mm256_mullo_epi16(upper, fortyFive));
  const __m256i middle = _mm256_sub_epi16(upper, _mm256_mullo_epi16(top, fortyFive));
  const __m256i digits =
      _mm256_or_si256(low, _mm256_or_si256(_mm256_slli_epi32(middle, 8), _mm256_slli_epi32(top, 16)));
  const __m256i pack = twice(_mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
  const __m256i chars = _mm256_shuffle_epi8(digitChars(digits), pack);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(chars));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 12), _mm256_extracti128_si256(chars, 1));
}

// 24 characters, of which 28 are read, become 16 bytes. False when a group is bad.
[[VARNIK_AVX2]] inline bool read24(const u8* text, u8* out) {
  const __m256i chars = _mm256_set_m128i(load16(text + 12), load16(text));
  const __m256i spread = twice(_mm_setr_epi8(0, 1, 2, 2, 3, 4, 5, 5, 6, 7, 8, 8, 9, 10, 11, 11));
  const __m256i digits = digitValues(_mm256_shuffle_epi8(chars, spread));
  // low + 45 * middle, and top (it stands twice and is taken once); then the former + 2025 * top.
  const __m256i pairs = _mm256_maddubs_epi16(digits, _mm256_set1_epi32(0x00012D01));
  const __m256i values = _mm256_madd_epi16(pairs, _mm256_set1_epi32(kSquare << 16 | 1));
  const bool tooBig = !_mm256_testz_si256(values, _mm256_set1_epi32(static_cast<int>(0xFFFF0000)));
  if (tooBig || _mm256_movemask_epi8(digits) != 0) return false;
  const __m256i order = twice(_mm_setr_epi8(1, 0, 5, 4, 9, 8, 13, 12, -1, -1, -1, -1, -1, -1, -1, -1));
  const __m256i halves = _mm256_permute4x64_epi64(_mm256_shuffle_epi8(values, order), 0x08);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(halves));
  return true;
}

}  // namespace

[[VARNIK_AVX2]] void putBase45Avx2(const u8* from, u32 pairs, u8* out) {
  for (; pairs >= 8; pairs -= 8, from += 16, out += 24) put24(from, out);
  putBase45Scalar(from, pairs, out);
}

// A block with a bad group goes group by group, up to it.
[[VARNIK_AVX2]] u32 readBase45Avx2(const u8* text, u32 n, u8* out) {
  u32 groups = 0;
  while (n - 3 * groups >= 28 && read24(text + 3 * groups, out + 2 * groups)) groups += 8;
  return groups + readBase45Scalar(text + 3 * groups, n - 3 * groups, out + 2 * groups);
}
#endif

void putBase45(const u8* from, u32 pairs, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return putBase45Avx2(from, pairs, out);
#endif
  putBase45Scalar(from, pairs, out);
}

u32 readBase45(const u8* text, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return readBase45Avx2(text, n, out);
#endif
  return readBase45Scalar(text, n, out);
}

}  // namespace vk_simd
