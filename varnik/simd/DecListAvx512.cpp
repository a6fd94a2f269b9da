// The AVX-512 forms of decimal lists. Writing: each value is spread to three digits and a comma, of which those that it
// has are moved together. Reading: digits are weighed where they stand, all 64 places as if a value ended
// there, and those sums that stand at commas are moved together. No block waits for where the one before it ended.
#include "varnik/simd/DecList.h"

#if VARNIK_HAVE_AVX512
#include <immintrin.h>

namespace vk_simd {
namespace {

constexpr u32 kBlock = 64, kFirst = 2;

// What digits weigh, and the most that may stand behind a hundreds digit in a byte.
alignas(16) constexpr u8 kTimes10[16] = {0, 10, 20, 30, 40, 50, 60, 70, 80, 90};
alignas(16) constexpr u8 kTimes100[16] = {0, 100, 200};
alignas(16) constexpr s8 kMostBehind[16] = {99, 99, 55, -1, -1, -1, -1, -1, -1, -1};

// Under a mask of all lanes: GCC 12 warns of an uninitialised operand of the form without one.
[[VARNIK_AVX512]] inline __m512i looked(const void* table, __m512i digits) {
  const __m128i once = _mm_load_si128(static_cast<const __m128i*>(table));
  return _mm512_shuffle_epi8(_mm512_maskz_broadcast_i32x4(0xFFFF, once), digits);
}

// 64 characters as digits; commas, which are below them, and what is left out count as nothing.
[[VARNIK_AVX512]] inline __m512i digitsAt(const u8* text, u64 present) {
  return _mm512_subs_epu8(_mm512_maskz_loadu_epi8(present, text), _mm512_set1_epi8('0'));
}

// What the three characters before each place amount to.
struct Sums {
  __m512i bytes;
  u64 over;  // a bit for each that passes a byte
};

// `single` has a bit for each place before which one digit alone belongs to the value.
[[VARNIK_AVX512]] inline Sums sumsOf(const u8* text, u64 present, u64 single) {
  const __m512i units = digitsAt(text - 1, present), tens = digitsAt(text - 2, present);
  const __m512i three = digitsAt(text - 3, present);
  const __m512i hundreds = _mm512_maskz_mov_epi8(~single, three);
  const __m512i behind = _mm512_add_epi8(looked(kTimes10, tens), units);
  return {_mm512_add_epi8(looked(kTimes100, hundreds), behind),
          _mm512_cmpgt_epi8_mask(behind, looked(kMostBehind, hundreds))};
}

// Sixteen values as "ddd," each, and which of the characters they have.
struct Spread {
  __m512i text;
  u64 present;
};

[[VARNIK_AVX512]] inline Spread spreadOf(__m128i bytes) {
  // The dividends fit 16 bits: 205 / 2^11 and 41 / 2^12 divide what is below 256 by 10 and by 100.
  const __m512i values = _mm512_maskz_cvtepu8_epi32(0xFFFF, bytes), ten = _mm512_set1_epi32(10);
  const __m512i tenths = _mm512_maskz_srli_epi32(0xFFFF, _mm512_mullo_epi16(values, _mm512_set1_epi32(205)), 11);
  const __m512i hundreds = _mm512_maskz_srli_epi32(0xFFFF, _mm512_mullo_epi16(values, _mm512_set1_epi32(41)), 12);
  const __m512i units = _mm512_sub_epi16(values, _mm512_mullo_epi16(tenths, ten));
  const __m512i tens = _mm512_sub_epi16(tenths, _mm512_mullo_epi16(hundreds, ten));
  const __m512i lower = _mm512_or_si512(hundreds, _mm512_slli_epi16(tens, 8));
  const __m512i text = _mm512_or_si512(lower, _mm512_maskz_slli_epi32(0xFFFF, units, 16));
  // Each value stands beside its four characters: hundreds are there from 100 on, tens from 10 on.
  const __m512i fourTimes = _mm512_mullo_epi16(_mm512_or_si512(values, _mm512_maskz_slli_epi32(0xFFFF, values, 16)),
                                               _mm512_set1_epi16(0x0101));
  return {_mm512_add_epi8(text, _mm512_set1_epi32(0x2C303030)),
          _mm512_cmpge_epu8_mask(fourTimes, _mm512_set1_epi32(0x00000A64))};
}

}  // namespace

[[VARNIK_AVX512]] u32 putDecListAvx512(const u8* from, u32 n, u8* out) {
  constexpr u32 kValues = 16;
  u8* p = out;
  u32 i = 0;
  for (; n - i >= kValues; i += kValues) {
    const Spread block = spreadOf(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i)));
    _mm512_storeu_si512(p, _mm512_maskz_compress_epi8(block.present, block.text));
    p += _mm_popcnt_u64(block.present);
  }
  if (i < n) {
    const Spread block = spreadOf(_mm_maskz_loadu_epi8(static_cast<__mmask16>(_bzhi_u32(0xFFFF, n - i)), from + i));
    const u64 present = _bzhi_u64(block.present, 4 * (n - i));
    const u32 count = static_cast<u32>(_mm_popcnt_u64(present));
    _mm512_mask_storeu_epi8(p, _bzhi_u64(~u64{0}, count), _mm512_maskz_compress_epi8(present, block.text));
    p += count;
  }
  return static_cast<u32>(p - out);
}

// The first values go singly, so that each block may be seen from three characters before it, and a list with blanks
// costs no block for each of its values.
[[VARNIK_AVX512]] DecListRun readDecListAvx512(const u8* text, u32 n, u8* out, u32 room) {
  DecListRun done = readDecListScalar(text, n, out, room < kFirst ? room : kFirst);
  if (done.values < kFirst) return done;
  u64 carried = u64{1} << 63;  // the commas of the 64 characters before the block
  for (u64 i = done.chars; i < n; i += kBlock) {
    const u64 present = n - i < kBlock ? _bzhi_u64(~u64{0}, static_cast<u32>(n - i)) : ~u64{0};
    const __m512i chars = _mm512_maskz_loadu_epi8(present, text + i);
    const u64 digits = _mm512_cmple_epu8_mask(_mm512_sub_epi8(chars, _mm512_set1_epi8('0')), _mm512_set1_epi8(9));
    u64 commas = _mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8(','));
    const u64 back1 = commas << 1 | carried >> 63, back2 = commas << 2 | carried >> 62;
    const u64 back3 = commas << 3 | carried >> 61;
    const Sums sums = sumsOf(text + i, present, back2);
    const u64 alien = ~(digits | commas), empty = commas & back1, fourth = ~(commas | back1 | back2 | back3);
    const u64 faults = ((alien | fourth) & present) | empty | (sums.over & commas);
    carried = commas;
    commas = _bzhi_u64(commas, static_cast<u32>(_tzcnt_u64(faults)));  // before the first one
    const u32 count = static_cast<u32>(_mm_popcnt_u64(commas));
    if (count > room - done.values) break;
    const __m512i values = _mm512_maskz_compress_epi8(commas, sums.bytes);
    _mm512_mask_storeu_epi8(out + done.values, _bzhi_u64(~u64{0}, count), values);
    done.values += count;
    if (commas != 0) done.chars = static_cast<u32>(i) + kBlock - static_cast<u32>(__builtin_clzll(commas));
    if (faults != 0) return done;
  }
  const DecListRun rest = readDecListScalar(text + done.chars, n - done.chars, out + done.values, room - done.values);
  return {done.chars + rest.chars, done.values + rest.values};
}

}  // namespace vk_simd
#endif
