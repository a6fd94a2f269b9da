#include "varnik/simd/HexEscape.h"

#include <array>
#include <cstring>

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

namespace {

constexpr std::array<u8, 256> kHexValues = [] {
  std::array<u8, 256> values{};
  for (u32 c = 0; c < 256; ++c) values[c] = hexValue(static_cast<u8>(c));
  return values;
}();

}  // namespace

u32 unescapeHexScalar(u8 marker, const u8* text, u32 n, u8* out) {
  u8* p = out;
  for (u32 i = 0; i < n; ++i) {
    *p = text[i];
    if (text[i] == marker && n - i >= 3) {
      const u8 high = kHexValues[text[i + 1]], low = kHexValues[text[i + 2]];
      if ((high | low) < 16) {
        *p = static_cast<u8>(high << 4 | low);
        i += 2;
      }
    }
    ++p;
  }
  return static_cast<u32>(p - out);
}

#if VARNIK_HAVE_AVX2
namespace {

// For each mask of 8 bytes, the places of those to keep, in order.
struct Places {
  u8 at[256][8];
};
constexpr Places kPlaces = [] {
  Places places{};
  for (u32 mask = 0; mask < 256; ++mask)
    for (u32 bit = 0, kept = 0; bit < 8; ++bit)
      if ((mask >> bit & 1) != 0) places.at[mask][kept++] = static_cast<u8>(bit);
  return places;
}();

[[VARNIK_AVX2]] inline __m256i load(const u8* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// Stores the kept ones of the low 8 bytes and returns the place behind them; all 8 bytes there are written.
[[VARNIK_AVX2]] inline u8* storeKept8(u8* out, __m128i bytes, u32 keep) {
  const __m128i places = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kPlaces.at[keep]));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(bytes, places));
  return out + _mm_popcnt_u32(keep);
}

[[VARNIK_AVX2]] inline u8* storeKept32(u8* out, __m256i bytes, u32 keep) {
  const __m128i low = _mm256_castsi256_si128(bytes), high = _mm256_extracti128_si256(bytes, 1);
  out = storeKept8(out, low, keep & 0xFF);
  out = storeKept8(out, _mm_unpackhi_epi64(low, low), keep >> 8 & 0xFF);
  out = storeKept8(out, high, keep >> 16 & 0xFF);
  return storeKept8(out, _mm_unpackhi_epi64(high, high), keep >> 24);
}

struct Digits {
  __m256i values, valid;  // valid: all bits of each byte that is a hex digit
};

[[VARNIK_AVX2]] inline Digits digitsOf(__m256i c) {
  // A digit's value is its low half; a letter's lacks 9. A difference is in range when the least of it and the limit is
  // itself.
  const __m256i letter = _mm256_or_si256(c, _mm256_set1_epi8(0x20));
  const __m256i fromZero = _mm256_sub_epi8(c, _mm256_set1_epi8('0'));
  const __m256i fromA = _mm256_sub_epi8(letter, _mm256_set1_epi8('a'));
  const __m256i isDigit = _mm256_cmpeq_epi8(_mm256_min_epu8(fromZero, _mm256_set1_epi8(9)), fromZero);
  const __m256i isLetter = _mm256_cmpeq_epi8(_mm256_min_epu8(fromA, _mm256_set1_epi8(5)), fromA);
  const __m256i half = _mm256_and_si256(c, _mm256_set1_epi8(15));
  return {_mm256_add_epi8(half, _mm256_and_si256(isLetter, _mm256_set1_epi8(9))), _mm256_or_si256(isDigit, isLetter)};
}

}  // namespace

// Every place of a block is taken as if an escape began there; then those are chosen where one does, and the two places
// behind each are dropped. An escape has no marker in its digits, so that no two overlap.
[[VARNIK_AVX2]] u32 unescapeHexAvx2(u8 marker, const u8* text, u32 n, u8* out) {
  const __m256i markers = _mm256_set1_epi8(static_cast<char>(marker));
  u8* p = out;
  u32 i = 0;
  u64 drop = 0;  // bit 0 is the place i
  for (; n - i >= 34; i += 32) {
    const __m256i bytes = load(text + i), marked = _mm256_cmpeq_epi8(bytes, markers);
    if ((static_cast<u32>(_mm256_movemask_epi8(marked)) | drop) == 0) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), bytes);
      p += 32;
      continue;
    }
    const Digits high = digitsOf(load(text + i + 1)), low = digitsOf(load(text + i + 2));
    const __m256i escape = _mm256_and_si256(marked, _mm256_and_si256(high.valid, low.valid));
    const __m256i value = _mm256_or_si256(_mm256_slli_epi16(high.values, 4), low.values);
    const u64 escapes = static_cast<u32>(_mm256_movemask_epi8(escape));
    drop |= escapes << 1 | escapes << 2;
    p = storeKept32(p, _mm256_blendv_epi8(bytes, value, escape), ~static_cast<u32>(drop));
    drop >>= 32;
  }
  i += static_cast<u32>(__builtin_popcountll(drop));
  return static_cast<u32>(p - out) + unescapeHexScalar(marker, text + i, n - i, p);
}
#endif

u32 unescapeHex(u8 marker, const u8* text, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return unescapeHexAvx2(marker, text, n, out);
#endif
  return unescapeHexScalar(marker, text, n, out);
}

}  // namespace vk_simd
