#include <cstring>

#include "varnik/simd/Base64.h"
#include "varnik/simd/Branchless.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

// The value of a character, negative for one outside the alphabet.
s32 valueOf(char character, bool url) {
  const s32 c = static_cast<u8>(character), both = url ? -1 : 0;
  s32 v = -1;
  v += maskInRange(c, 'A', 'Z') & (c - 'A' + 1);
  v += maskInRange(c, 'a', 'z') & (c - 'a' + 27);
  v += maskInRange(c, '0', '9') & (c - '0' + 53);
  v += maskInRange(c, '+', '+') & 63;
  v += maskInRange(c, '/', '/') & 64;
  v += maskInRange(c, '-', '-') & both & 63;
  v += maskInRange(c, '_', '_') & both & 64;
  return v;
}

}  // namespace

u32 base64DecodeScalar(const char* in, u32 n, bool url, u8* out) {
  u32 i = 0;
  for (; n - i >= 4; i += 4, out += 3) {
    const s32 a = valueOf(in[i], url), b = valueOf(in[i + 1], url), c = valueOf(in[i + 2], url),
              d = valueOf(in[i + 3], url);
    if ((a | b | c | d) < 0) break;
    const s32 bits = a << 18 | b << 12 | c << 6 | d;
    out[0] = static_cast<u8>(bits >> 16);
    out[1] = static_cast<u8>(bits >> 8);
    out[2] = static_cast<u8>(bits);
  }
  return i;
}

#if VARNIK_HAVE_AVX2
namespace {

// A character is valid when no bit is set in both tables: the first, by its high digit, names the rows that share their
// columns; the second, by its low digit, the rows in which that column is not in the alphabet.
//   0x01 row 2: + / (- as well in the URL-safe form)   0x02 row 3: 0 to 9   0x04 rows 4, 6: A to O, a to o
//   0x08 row 7, and 5 in the standard form: P to Z, p to z   0x20 row 5 in the URL-safe form: _ as well
//   0x10 all other rows
template <bool url>
struct Tables {
  static constexpr char row5 = url ? 0x20 : 0x08, pastZ = url ? 0x3A : 0x1A;
  [[VARNIK_AVX2]] static __m256i byHigh() {
    return _mm256_broadcastsi128_si256(_mm_setr_epi8(16, 16, 1, 2, 4, row5, 4, 8, 16, 16, 16, 16, 16, 16, 16, 16));
  }
  [[VARNIK_AVX2]] static __m256i byLow() {
    return _mm256_broadcastsi128_si256(_mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13,
                                                     pastZ, pastZ | 1, url ? pastZ : pastZ | 1, pastZ | 1, 0x1A));
  }
};

// What to add to a character for its value, by its high digit; `/` reads one place lower than `+`.
[[VARNIK_AVX2]] inline __m256i toValue() {
  return _mm256_broadcastsi128_si256(
      _mm_setr_epi8(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0));
}

struct Values {
  __m256i values, faults;  // a fault is any bit set
};

template <bool url>
[[VARNIK_AVX2]] inline Values valuesOf(const char* in) {
  const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in)), digit = _mm256_set1_epi8(15);
  const __m256i high = _mm256_and_si256(_mm256_srli_epi32(c, 4), digit), low = _mm256_and_si256(c, digit);
  const __m256i faults = _mm256_and_si256(_mm256_shuffle_epi8(Tables<url>::byHigh(), high),
                                          _mm256_shuffle_epi8(Tables<url>::byLow(), low));
  const __m256i row = _mm256_add_epi8(high, _mm256_cmpeq_epi8(c, _mm256_set1_epi8('/')));
  __m256i values = _mm256_add_epi8(c, _mm256_shuffle_epi8(toValue(), row));
  if constexpr (url) {
    const __m256i minus = _mm256_cmpeq_epi8(c, _mm256_set1_epi8('-'));
    const __m256i underscore = _mm256_cmpeq_epi8(c, _mm256_set1_epi8('_'));
    values = _mm256_add_epi8(values, _mm256_and_si256(minus, _mm256_set1_epi8('+' - '-')));
    values = _mm256_add_epi8(values, _mm256_and_si256(underscore, _mm256_set1_epi8(63 - ('_' - 'A'))));
  }
  return {values, faults};
}

// 24 bytes at the front: pairs of values are joined to 12 bits, pairs of these to 24, and their bytes turned round.
[[VARNIK_AVX2]] inline __m256i joined(__m256i values) {
  const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0140));
  const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
  const __m256i order =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
  return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(groups, order), _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

[[VARNIK_AVX2]] inline void store32(u8* out, __m256i v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), v);
}
[[VARNIK_AVX2]] inline void store24(u8* out, __m256i v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(v));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(v, 1));
}

// Stores 56 bytes, the last 8 of them for nothing.
template <bool url>
[[VARNIK_AVX2]] inline bool decode64(const char* in, u8* out) {
  const Values a = valuesOf<url>(in), b = valuesOf<url>(in + 32);
  const __m256i faults = _mm256_or_si256(a.faults, b.faults);
  if (!_mm256_testz_si256(faults, faults)) return false;
  store32(out, joined(a.values));
  store32(out + 24, joined(b.values));
  return true;
}

template <bool url>
[[VARNIK_AVX2]] inline bool decode32(const char* in, u8* out) {
  const Values v = valuesOf<url>(in);
  if (!_mm256_testz_si256(v.faults, v.faults)) return false;
  store24(out, joined(v.values));
  return true;
}

// Decodes less than a block through a block of its own; the characters that fill it stand for zeros.
template <bool url>
[[VARNIK_AVX2]] bool decodeShort(const char* in, u32 n, u8* out) {
  char text[32];
  u8 bytes[24];
  std::memset(text, 'A', sizeof text);
  std::memcpy(text, in, n);
  if (!decode32<url>(text, bytes)) return false;
  std::memcpy(out, bytes, n / 4 * 3);
  return true;
}

template <bool url>
[[VARNIK_AVX2]] u32 decode(const char* in, u32 n, u8* out) {
  const u32 whole = n & ~u32{3};
  u32 i = 0;
  while (whole - i >= 64 + 12 && decode64<url>(in + i, out + i / 4 * 3)) i += 64;
  while (whole - i >= 32 && decode32<url>(in + i, out + i / 4 * 3)) i += 32;
  if (whole - i < 32 && whole != i && decodeShort<url>(in + i, whole - i, out + i / 4 * 3)) return whole;
  return i + base64DecodeScalar(in + i, whole - i, url, out + i / 4 * 3);
}

}  // namespace

[[VARNIK_AVX2]] u32 base64DecodeAvx2(const char* in, u32 n, bool url, u8* out) {
  return url ? decode<true>(in, n, out) : decode<false>(in, n, out);
}
#endif

u32 base64Decode(const char* in, u32 n, bool url, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64DecodeAvx2(in, n, url, out);
#endif
  return base64DecodeScalar(in, n, url, out);
}

}  // namespace vk_simd
