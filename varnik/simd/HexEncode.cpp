#include "varnik/simd/Branchless.h"
#include "varnik/simd/Hex.h"
#include "varnik/simd/internal/Stream.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

char digit(u32 nibble, bool lower) {
  const s32 value = static_cast<s32>(nibble);
  return static_cast<char>('0' + value + (maskInRange(value, 10, 15) & ((lower ? 'a' : 'A') - '0' - 10)));
}

}  // namespace

void hexEncodeScalar(const u8* in, u32 n, bool lower, char* out) {
  for (u32 i = 0; i < n; ++i, out += 2) {
    out[0] = digit(in[i] >> 4, lower);
    out[1] = digit(in[i] & 15, lower);
  }
}

void hexEncodeColonsScalar(const u8* in, u32 n, bool lower, char* out) {
  for (u32 i = 0; i < n; ++i, out += 3) {
    hexEncodeScalar(in + i, 1, lower, out);
    if (n - i > 1) out[2] = ':';
  }
}

#if VARNIK_HAVE_AVX2
namespace {

[[VARNIK_AVX2]] inline __m128i digits128(bool lower) {
  return lower ? _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f')
               : _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F');
}

// Each byte is widened to 16 bits, its high nibble first: the memory order of the digits.
[[VARNIK_AVX2]] inline __m256i encode16(const u8* in, __m256i digits) {
  const __m256i wide = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in)));
  const __m256i low = _mm256_and_si256(_mm256_slli_epi16(wide, 8), _mm256_set1_epi16(0x0F00));
  return _mm256_shuffle_epi8(digits, _mm256_or_si256(low, _mm256_srli_epi16(wide, 4)));
}
[[VARNIK_AVX2]] inline __m128i encode8(const u8* in, __m128i digits) {
  const __m128i wide = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(in)));
  const __m128i low = _mm_and_si128(_mm_slli_epi16(wide, 8), _mm_set1_epi16(0x0F00));
  return _mm_shuffle_epi8(digits, _mm_or_si128(low, _mm_srli_epi16(wide, 4)));
}

[[VARNIK_AVX2]] inline void store32(char* out, __m256i v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), v);
}
[[VARNIK_AVX2]] inline void store16(char* out, __m128i v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v);
}

// The last block overlaps what is written already rather than leave single bytes.
[[VARNIK_AVX2]] void encodeShort(const u8* in, u32 n, bool lower, char* out) {
  if (n < 8) return hexEncodeScalar(in, n, lower, out);
  const __m128i digits = digits128(lower);
  store16(out, encode8(in, digits));
  store16(out + 2 * (n - 8), encode8(in + n - 8, digits));
}

}  // namespace

[[VARNIK_AVX2]] void hexEncodeAvx2(const u8* in, u32 n, bool lower, char* out) {
  if (n < 16) return encodeShort(in, n, lower, out);
  const __m256i digits = _mm256_broadcastsi128_si256(digits128(lower));
  std::size_t i = 0;  // 2 * i may pass 32 bits
  for (; n - i >= 32; i += 32) {
    store32(out + 2 * i, encode16(in + i, digits));
    store32(out + 2 * i + 32, encode16(in + i + 16, digits));
  }
  if (n - i > 16) store32(out + 2 * i, encode16(in + i, digits));
  if (i < n) store32(out + 2 * (std::size_t{n} - 16), encode16(in + n - 16, digits));
}

// Whole lines of the cache, so that none is read before it is written.
[[VARNIK_AVX2]] void hexEncodeStreamAvx2(const u8* in, u32 n, bool lower, char* out) {
  const u32 before = charsBeforeLine(out), bytesBefore = before / 2;
  if (before % 2 != 0 || bytesBefore > n) return hexEncodeAvx2(in, n, lower, out);
  hexEncodeAvx2(in, bytesBefore, lower, out);
  in += bytesBefore, n -= bytesBefore, out += before;
  const __m256i digits = _mm256_broadcastsi128_si256(digits128(lower));
  for (; n >= kLine / 2; in += kLine / 2, n -= kLine / 2, out += kLine)
    streamLine(out, encode16(in, digits), encode16(in + 16, digits));
  _mm_sfence();
  hexEncodeAvx2(in, n, lower, out);
}

// Five bytes make 15 characters; the sixteenth that is stored is the next byte's first digit's place.
[[VARNIK_AVX2]] void hexEncodeColonsAvx2(const u8* in, u32 n, bool lower, char* out) {
  const __m128i digits = digits128(lower);
  const __m128i spread = _mm_setr_epi8(0, 1, -1, 2, 3, -1, 4, 5, -1, 6, 7, -1, 8, 9, -1, -1);
  const __m128i colons = _mm_setr_epi8(0, 0, ':', 0, 0, ':', 0, 0, ':', 0, 0, ':', 0, 0, ':', 0);
  u32 i = 0;
  for (; n - i >= 8; i += 5, out += 15)
    store16(out, _mm_or_si128(_mm_shuffle_epi8(encode8(in + i, digits), spread), colons));
  hexEncodeColonsScalar(in + i, n - i, lower, out);
}
#endif

void hexEncode(const u8* in, u32 n, bool lower, char* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return hexEncodeAvx2(in, n, lower, out);
#elif VARNIK_HAVE_NEON
  return hexEncodeNeon(in, n, lower, out);
#endif
  hexEncodeScalar(in, n, lower, out);
}

void hexEncodeStream(const u8* in, u32 n, bool lower, char* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return hexEncodeStreamAvx2(in, n, lower, out);
#endif
  hexEncode(in, n, lower, out);
}

void hexEncodeColons(const u8* in, u32 n, bool lower, char* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return hexEncodeColonsAvx2(in, n, lower, out);
#endif
  hexEncodeColonsScalar(in, n, lower, out);
}

}  // namespace vk_simd
