#include "varnik/simd/DecList.h"

#include <cstring>

#include "varnik/simd/Expand.h"

namespace vk_simd {

namespace {

// The characters "ddd," of each byte value, and how many there are.
struct Table {
  u8 text[256][4];
  u8 length[256];
};
constexpr Table kTable = [] {
  Table table{};
  for (u32 value = 0; value < 256; ++value) {
    u8* p = table.text[value];
    if (value >= 100) *p++ = static_cast<u8>('0' + value / 100);
    if (value >= 10) *p++ = static_cast<u8>('0' + value / 10 % 10);
    *p++ = static_cast<u8>('0' + value % 10);
    *p++ = ',';
    table.length[value] = static_cast<u8>(p - table.text[value]);
  }
  return table;
}();

}  // namespace

u32 putDecListScalar(const u8* from, u32 n, u8* out) {
  u8* p = out;
  for (u32 i = 0; i < n; ++i) {
    std::memcpy(p, kTable.text[from[i]], 4);
    p += kTable.length[from[i]];
  }
  return static_cast<u32>(p - out);
}

DecListRun readDecListScalar(const u8* text, u32 n, u8* out, u32 room) {
  DecListRun done{0, 0};
  while (done.values < room) {
    u32 value = 0, i = done.chars;
    while (i < n && i - done.chars < 4 && text[i] >= '0' && text[i] <= '9') value = value * 10 + (text[i++] - '0');
    const u32 digits = i - done.chars;
    if (digits == 0 || digits > 3 || value > 255 || i == n || text[i] != ',') break;
    out[done.values++] = static_cast<u8>(value);
    done.chars = i + 1;
  }
  return done;
}

#if VARNIK_HAVE_AVX2
namespace {

// ---- Writing ----

// Where the characters of four values come from, of a vector that holds their hundreds, tens, units and commas: for
// each choice of those of two digits and more (low half of the index) and of those of three (high half).
struct Shapes {
  u8 at[256][16];
};
constexpr Shapes kShapes = [] {
  Shapes shapes{};
  for (u32 index = 0; index < 256; ++index) {
    u8* p = shapes.at[index];
    for (u32 k = 0; k < 4; ++k) {
      if ((index >> (4 + k) & 1) != 0) *p++ = static_cast<u8>(k);
      if ((index >> k & 1) != 0) *p++ = static_cast<u8>(4 + k);
      *p++ = static_cast<u8>(8 + k);
      *p++ = static_cast<u8>(12 + k);
    }
  }
  return shapes;
}();

[[VARNIK_AVX2]] inline u8* put4(__m128i parts, u32 index, u8* out) {
  const __m128i shape = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kShapes.at[index]));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(parts, shape));
  return out + 8 + _mm_popcnt_u32(index);
}

// One bit for each value that is `least` or more.
[[VARNIK_AVX2]] inline u32 reaching(__m128i values, char least) {
  return static_cast<u32>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(values, _mm_set1_epi8(least)), values)));
}

[[VARNIK_AVX2]] inline u8* put16(const u8* from, u8* out) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)), zero = _mm_set1_epi8('0');
  const __m256i values = _mm256_cvtepu8_epi16(bytes);
  // 205 / 2^11 and 41 / 2^12 divide what is below 256 by 10 and by 100.
  const __m256i tenths = _mm256_srli_epi16(_mm256_mullo_epi16(values, _mm256_set1_epi16(205)), 11);
  const __m256i hundredths = _mm256_srli_epi16(_mm256_mullo_epi16(values, _mm256_set1_epi16(41)), 12);
  const __m256i ten = _mm256_set1_epi16(10);
  const __m256i units = _mm256_sub_epi16(values, _mm256_mullo_epi16(tenths, ten));
  const __m256i tens = _mm256_sub_epi16(tenths, _mm256_mullo_epi16(hundredths, ten));
  // Packed to bytes, the halves of two vectors alternate.
  const __m256i low = _mm256_permute4x64_epi64(_mm256_packus_epi16(hundredths, tens), 0xD8);
  const __m256i high = _mm256_permute4x64_epi64(_mm256_packus_epi16(units, units), 0xD8);
  const Quarters parts =
      quartersOf(_mm_add_epi8(_mm256_castsi256_si128(low), zero), _mm_add_epi8(_mm256_extracti128_si256(low, 1), zero),
                 _mm_add_epi8(_mm256_castsi256_si128(high), zero), _mm_set1_epi8(','));
  const u32 two = reaching(bytes, 10), three = reaching(bytes, 100);
  out = put4(parts.at[0], (two & 15) | (three & 15) << 4, out);
  out = put4(parts.at[1], (two >> 4 & 15) | (three & 0xF0), out);
  out = put4(parts.at[2], (two >> 8 & 15) | (three >> 4 & 0xF0), out);
  return put4(parts.at[3], two >> 12 | (three >> 8 & 0xF0), out);
}

// ---- Reading ----

constexpr u32 kBlock = 64, kReach = 72;  // characters of a block, and what is read of the text for it
constexpr u32 kMostValues = 32;          // a value takes two characters at least

[[VARNIK_AVX2]] inline u64 maskOf(__m256i first, __m256i second) {
  return static_cast<u32>(_mm256_movemask_epi8(first)) | u64{static_cast<u32>(_mm256_movemask_epi8(second))} << 32;
}

// The commas of a block, one bit each; 0 unless all else up to the last one are digits, one to three before each comma.
[[VARNIK_AVX2]] inline u64 plainCommas(const u8* text) {
  const __m256i comma = _mm256_set1_epi8(','), nine = _mm256_set1_epi8(9), zero = _mm256_set1_epi8('0');
  const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
  const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + 32));
  const __m256i digitA = _mm256_sub_epi8(a, zero), digitB = _mm256_sub_epi8(b, zero);
  const u64 digits = maskOf(_mm256_cmpeq_epi8(_mm256_min_epu8(digitA, nine), digitA),
                            _mm256_cmpeq_epi8(_mm256_min_epu8(digitB, nine), digitB));
  const u64 commas = maskOf(_mm256_cmpeq_epi8(a, comma), _mm256_cmpeq_epi8(b, comma));
  const u64 empty = commas & (commas << 1 | 1), long4 = digits & digits << 1 & digits << 2 & digits << 3;
  return (digits | commas) == ~u64{0} && empty == 0 && long4 == 0 ? commas : 0;
}

// Takes each value of a block as the four characters from its first digit on, the last digit moved to the top.
[[VARNIK_AVX2]] inline void gather(const u8* text, u64 commas, u32 count, u32* words) {
  const u8* start = text;
  for (u32 k = 0; k < count; k += 4)
    for (u32 j = 0; j < 4; ++j) {  // past the last comma the words are of no use
      const u8* const end = text + _tzcnt_u64(commas);
      std::memcpy(words + k + j, start, 4);
      words[k + j] <<= static_cast<u32>(8 * (start - end)) & 31;
      start = end + 1;
      commas = _blsr_u64(commas);
    }
}

// Eight gathered values as 32-bit numbers: hundreds, tens and units are bytes 1 to 3, and what was digits is now above
// 0x2F, so that the missing ones, 0, end as 0, too.
[[VARNIK_AVX2]] inline __m256i valuesOf(const u32* words) {
  const __m256i chars = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words));
  const __m256i digits = _mm256_subs_epu8(chars, _mm256_set1_epi8('0'));
  const __m256i pairs = _mm256_maddubs_epi16(digits, _mm256_set1_epi32(0x010A6400));
  return _mm256_madd_epi16(pairs, _mm256_set1_epi16(1));
}

// Writes 32 values as bytes; false when one of the first `count` is above 255.
[[VARNIK_AVX2]] inline bool store(const u32* words, u32 count, u8* out) {
  const __m256i a = valuesOf(words), b = valuesOf(words + 8), c = valuesOf(words + 16), d = valuesOf(words + 24);
  const __m256i ab = _mm256_packus_epi32(a, b), cd = _mm256_packus_epi32(c, d);
  // What passes a byte stays to be seen in the packing, in the order of the bytes.
  const __m256i most = _mm256_set1_epi16(255);
  const __m256i over = _mm256_packs_epi16(_mm256_cmpgt_epi16(ab, most), _mm256_cmpgt_epi16(cd, most));
  const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  const u32 bad = static_cast<u32>(_mm256_movemask_epi8(_mm256_permutevar8x32_epi32(over, order)));
  if (_bzhi_u32(bad, count) != 0) return false;
  const __m256i bytes = _mm256_permutevar8x32_epi32(_mm256_packus_epi16(ab, cd), order);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
  return true;
}

}  // namespace

[[VARNIK_AVX2]] u32 putDecListAvx2(const u8* from, u32 n, u8* out) {
  u8* p = out;
  u32 i = 0;
  for (; n - i >= 16; i += 16) p = put16(from + i, p);
  return static_cast<u32>(p - out) + putDecListScalar(from + i, n - i, p);
}

// The commas of a block are found at once, so that no value waits for the length of the one before it.
[[VARNIK_AVX2]] DecListRun readDecListAvx2(const u8* text, u32 n, u8* out, u32 room) {
  DecListRun done{0, 0};
  while (n - done.chars >= kReach && room - done.values >= kMostValues) {
    const u8* const block = text + done.chars;
    const u64 commas = plainCommas(block);
    if (commas == 0) break;
    const u32 count = static_cast<u32>(_mm_popcnt_u64(commas));
    u32 words[kMostValues + 3];
    gather(block, commas, count, words);
    if (!store(words, count, out + done.values)) break;
    done.values += count;
    done.chars += kBlock - static_cast<u32>(__builtin_clzll(commas));
  }
  const DecListRun rest = readDecListScalar(text + done.chars, n - done.chars, out + done.values, room - done.values);
  return {done.chars + rest.chars, done.values + rest.values};
}
#endif

u32 putDecList(const u8* from, u32 n, u8* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return putDecListAvx512(from, n, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return putDecListAvx2(from, n, out);
#endif
  return putDecListScalar(from, n, out);
}

DecListRun readDecList(const u8* text, u32 n, u8* out, u32 room) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return readDecListAvx512(text, n, out, room);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return readDecListAvx2(text, n, out, room);
#endif
  return readDecListScalar(text, n, out, room);
}

}  // namespace vk_simd
