// The AVX-512 form of reading decimal lists: digits are weighed where they stand, all 64 places as if a value ended
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

}  // namespace

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
