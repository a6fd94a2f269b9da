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

// The end of a line, one or two characters, held where no store of bytes can be thought to change it.
struct End {
  explicit End(std::string_view text) : first(text.front()), last(text.back()), length(static_cast<u32>(text.size())) {}
  bool standsAt(const char* at) const { return at[0] == first && at[length - 1] == last; }
  char first, last;
  u32 length;
};

}  // namespace

u32 base64DecodeScalar(const char* in, u32 n, bool url, u8* out) {
  u32 i = 0;
  for (; n - i >= 4; i += 4, out += 3) {
    const s32 a = valueOf(in[i], url), b = valueOf(in[i + 1], url), c = valueOf(in[i + 2], url),
              d = valueOf(in[i + 3], url);
    if (told((a | b | c | d) < 0)) break;
    const s32 bits = a << 18 | b << 12 | c << 6 | d;
    out[0] = static_cast<u8>(bits >> 16);
    out[1] = static_cast<u8>(bits >> 8);
    out[2] = static_cast<u8>(bits);
  }
  return i;
}

u32 base64DecodeLinesScalar(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out) {
  const End lineEnd(end);
  const u32 length = lineChars + lineEnd.length;
  u32 lines = 0;
  for (; n >= length; n -= length, in += length, out += lineChars / 4 * 3, ++lines)
    if (!lineEnd.standsAt(in + lineChars) || base64DecodeScalar(in, lineChars, false, out) != lineChars) break;
  return lines;
}

#if VARNIK_HAVE_AVX2
namespace {

// A character is valid when no bit is set in both tables: the first, by its high digit, names the rows that share their
// columns; the second, by its low digit, the rows in which that column is not in the alphabet.
//   0x01 row 2: + /, or - alone   0x02 row 3: 0 to 9   0x04 rows 4, 6: A to O, a to o
//   0x08 row 7, and 5 in the standard form: P to Z, p to z   0x20 row 5 in the URL-safe form: _ as well   0x10 the rest
// The URL-safe form leaves + and / to the scalar.
template <bool url>
struct Tables {
  static constexpr char row5 = url ? 0x20 : 0x08, pastZ = url ? 0x3A : 0x1A;
  static constexpr char b = url ? pastZ | 1 : pastZ, d = url ? pastZ : pastZ | 1, f = url ? 0x1B : 0x1A;
  [[VARNIK_AVX2]] static __m256i byHigh() {
    return _mm256_setr_epi8(16, 16, 1, 2, 4, row5, 4, 8, 16, 16, 16, 16, 16, 16, 16, 16,  //
                            16, 16, 1, 2, 4, row5, 4, 8, 16, 16, 16, 16, 16, 16, 16, 16);
  }
  [[VARNIK_AVX2]] static __m256i byLow() {
    constexpr char none = 0x15, most = 0x11, a = 0x13, both = pastZ | 1;
    return _mm256_setr_epi8(none, most, most, most, most, most, most, most, most, most, a, b, both, d, both, f,  //
                            none, most, most, most, most, most, most, most, most, most, a, b, both, d, both, f);
  }
  // What to add to a character for its value, by its high digit. `/` reads one place lower than `+`.
  [[VARNIK_AVX2]] static __m256i toValue() {
    constexpr char digit = 52 - '0', upper = -'A', lower = 26 - 'a', row2 = 62 - (url ? '-' : '+');
    return _mm256_setr_epi8(0, 63 - '/', row2, digit, upper, upper, lower, lower, 0, 0, 0, 0, 0, 0, 0, 0,  //
                            0, 63 - '/', row2, digit, upper, upper, lower, lower, 0, 0, 0, 0, 0, 0, 0, 0);
  }
};

struct Values {
  __m256i values, faults;  // a fault is any bit set
};

[[VARNIK_AVX2]] inline __m256i load(const char* in) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
}

template <bool url>
[[VARNIK_AVX2]] inline Values valuesOf(__m256i c) {
  const __m256i digit = _mm256_set1_epi8(15);
  const __m256i high = _mm256_and_si256(_mm256_srli_epi32(c, 4), digit), low = _mm256_and_si256(c, digit);
  const __m256i faults = _mm256_and_si256(_mm256_shuffle_epi8(Tables<url>::byHigh(), high),
                                          _mm256_shuffle_epi8(Tables<url>::byLow(), low));
  const __m256i odd = _mm256_cmpeq_epi8(c, _mm256_set1_epi8(url ? '_' : '/'));
  if constexpr (url) {
    constexpr char underscore = 63 - ('_' - 'A');  // beyond what the row says
    const __m256i values = _mm256_add_epi8(c, _mm256_shuffle_epi8(Tables<url>::toValue(), high));
    return {_mm256_add_epi8(values, _mm256_and_si256(odd, _mm256_set1_epi8(underscore))), faults};
  } else {
    return {_mm256_add_epi8(c, _mm256_shuffle_epi8(Tables<url>::toValue(), _mm256_add_epi8(high, odd))), faults};
  }
}

// Twelve bytes at the front of each half: pairs of values are joined to 12 bits, pairs of these to 24, and their bytes
// turned round.
[[VARNIK_AVX2]] inline __m256i joinedHalves(__m256i values) {
  const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0140));
  const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
  const __m256i order = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,  //
                                         2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
  return _mm256_shuffle_epi8(groups, order);
}
[[VARNIK_AVX2]] inline __m256i joined(__m256i values) {
  return _mm256_permutevar8x32_epi32(joinedHalves(values), _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

[[VARNIK_AVX2]] inline void store32(u8* out, __m256i v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), v);
}
[[VARNIK_AVX2]] inline void store24(u8* out, __m256i v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(v));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(v, 1));
}

constexpr u32 kBlockChars = 32, kBlockBytes = 24;
constexpr u32 kBlocks = 2;         // taken at once
constexpr u32 kOverrunChars = 12;  // the characters of the 8 bytes that a whole store writes behind a block

// Looks for faults only when all is stored, and stores 8 bytes behind the blocks' own: either is overwritten later.
template <bool url>
[[VARNIK_AVX2]] inline bool decodeBlocks(const char* in, u8* out) {
  __m256i faults = _mm256_setzero_si256();
  for (u32 k = 0; k < kBlocks; ++k) {
    const Values v = valuesOf<url>(load(in + k * kBlockChars));
    store32(out + k * kBlockBytes, joined(v.values));
    faults = _mm256_or_si256(faults, v.faults);
  }
  return told(_mm256_testz_si256(faults, faults)) != 0;
}

[[VARNIK_AVX2]] inline u32 faultsOf(const Values& v) {
  return told(~static_cast<u32>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(v.faults, _mm256_setzero_si256()))));
}

// Stores a block, and returns how many characters its whole groups are up to the first fault.
template <bool url>
[[VARNIK_AVX2]] inline u32 decodeBlock(const char* in, u8* out) {
  const Values v = valuesOf<url>(load(in));
  store24(out, joined(v.values));
  if (told(_mm256_testz_si256(v.faults, v.faults))) return kBlockChars;
  return static_cast<u32>(__builtin_ctz(faultsOf(v))) & ~u32{3};
}

// One group, by way of registers alone.
template <bool url>
[[VARNIK_AVX2]] inline u32 decodeGroup(const char* in, u8* out) {
  int text;
  std::memcpy(&text, in, 4);
  const Values v = valuesOf<url>(_mm256_castsi128_si256(_mm_cvtsi32_si128(text)));
  const int bytes = _mm256_cvtsi256_si32(joinedHalves(v.values));
  std::memcpy(out, &bytes, 3);
  return (faultsOf(v) & 15) == 0 ? 4 : 0;
}

// Decodes less than a block through a block of its own.
template <bool url>
[[VARNIK_AVX2]] inline u32 decodeShort(const char* in, u32 n, u8* out) {
  char text[kBlockChars];
  u8 bytes[kBlockBytes];
  std::memset(text, 'A', sizeof text);
  std::memcpy(text, in, n);
  const u32 good = decodeBlock<url>(text, bytes), count = good < n ? good : n;
  std::memcpy(out, bytes, count / 4 * 3);
  return count;
}

// Whole groups from the front, as far as the alphabet of this form goes. The last block overlaps the one before it.
template <bool url>
[[VARNIK_AVX2]] inline u32 decodeRun(const char* in, u32 n, u8* out) {
  if (n == 0) return 0;
  if (n == 4) return decodeGroup<url>(in, out);
  if (n < kBlockChars) return decodeShort<url>(in, n, out);
  u32 i = 0;
  while (n - i >= kBlocks * kBlockChars + kOverrunChars && decodeBlocks<url>(in + i, out + i / 4 * 3))
    i += kBlocks * kBlockChars;
  while (n != i) {
    const u32 at = n - i < kBlockChars ? n - kBlockChars : i, good = decodeBlock<url>(in + at, out + at / 4 * 3);
    i = at + good;
    if (good < kBlockChars) break;
  }
  return i;
}

// The scalar takes up to a block where the vector stopped: there it finds the fault, or what only it knows.
[[VARNIK_AVX2]] u32 decodeUrl(const char* in, u32 n, u8* out) {
  for (u32 i = 0;;) {
    i += decodeRun<true>(in + i, n - i, out + i / 4 * 3);
    const u32 part = n - i < kBlockChars ? n - i : kBlockChars;
    const u32 done = base64DecodeScalar(in + i, part, true, out + i / 4 * 3);
    i += done;
    if (done < part || i == n) return i;
  }
}

// One line of at least a block, stored exactly; the last block overlaps the one before it. Looks for faults only when
// all is stored.
[[VARNIK_AVX2]] inline __attribute__((always_inline)) bool decodeLine(const char* in, u32 n, u8* out) {
  __m256i faults = _mm256_setzero_si256();
  for (u32 i = 0; i < n; i += kBlockChars) {
    const u32 at = n - i < kBlockChars ? n - kBlockChars : i;
    const Values v = valuesOf<false>(load(in + at));
    store24(out + at / 4 * 3, joined(v.values));
    faults = _mm256_or_si256(faults, v.faults);
  }
  return told(_mm256_testz_si256(faults, faults)) != 0;
}

}  // namespace

[[VARNIK_AVX2]] u32 base64DecodeAvx2(const char* in, u32 n, bool url, u8* out) {
  n &= ~u32{3};
  return url ? decodeUrl(in, n, out) : decodeRun<false>(in, n, out);
}

[[VARNIK_AVX2]] u32 base64DecodeLinesAvx2(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out) {
  constexpr u32 kUsual = 76;  // known to the compiler, it takes no loop
  if (lineChars < kBlockChars) return base64DecodeLinesScalar(in, n, lineChars, end, out);
  const End lineEnd(end);
  const u32 length = lineChars + lineEnd.length;
  u32 lines = 0;
  for (; n >= length; n -= length, in += length, out += lineChars / 4 * 3, ++lines) {
    if (!lineEnd.standsAt(in + lineChars)) break;
    if (!(lineChars == kUsual ? decodeLine(in, kUsual, out) : decodeLine(in, lineChars, out))) break;
  }
  return lines;
}
#endif

u32 base64DecodeLines(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return base64DecodeLinesAvx512(in, n, lineChars, end, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64DecodeLinesAvx2(in, n, lineChars, end, out);
#elif VARNIK_HAVE_NEON
  return base64DecodeLinesNeon(in, n, lineChars, end, out);
#endif
  return base64DecodeLinesScalar(in, n, lineChars, end, out);
}

u32 base64Decode(const char* in, u32 n, bool url, u8* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return base64DecodeAvx512(in, n, url, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base64DecodeAvx2(in, n, url, out);
#elif VARNIK_HAVE_NEON
  return base64DecodeNeon(in, n, url, out);
#endif
  return base64DecodeScalar(in, n, url, out);
}

}  // namespace vk_simd
