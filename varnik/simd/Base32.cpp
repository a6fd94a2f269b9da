#include "varnik/simd/Base32.h"

#include <cstring>

#include "varnik/simd/Branchless.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

char letter(u64 bits) {
  const s32 v = static_cast<s32>(bits & 31);
  return static_cast<char>(v + 'A' + (maskInRange(v, 26, 31) & ('2' - 'Z' - 1)));
}

// The value of a character, negative for one outside the alphabet.
s32 valueOf(char character) {
  const s32 c = static_cast<u8>(character);
  return -1 + (maskInRange(c, 'A', 'Z') & (c - 'A' + 1)) + (maskInRange(c, '2', '7') & (c - '2' + 27));
}

// Characters that carry bits of the last group's bytes; the others are padding.
constexpr u32 charsOf(u32 bytes) {
  return (bytes * 8 + 4) / 5;
}

void encodeGroup(const u8* in, char* out) {
  u64 bits = 0;
  for (u32 k = 0; k < 5; ++k) bits = bits << 8 | in[k];
  for (u32 k = 0; k < 8; ++k) out[k] = letter(bits >> (35 - 5 * k));
}

}  // namespace

void base32EncodeScalar(const u8* in, u32 n, char* out) {
  u32 i = 0;
  for (; n - i >= 5; i += 5, out += 8) encodeGroup(in + i, out);
  if (i == n) return;
  u8 last[5] = {};
  std::memcpy(last, in + i, n - i);
  encodeGroup(last, out);
  std::memset(out + charsOf(n - i), '=', 8 - charsOf(n - i));
}

u32 base32DecodeScalar(const char* in, u32 n, u8* out) {
  u32 i = 0;
  for (; n - i >= 8; i += 8, out += 5) {
    s32 any = 0;
    u64 bits = 0;
    for (u32 k = 0; k < 8; ++k) {
      const s32 value = valueOf(in[i + k]);
      any |= value;
      bits = bits << 5 | static_cast<u64>(value & 31);
    }
    if (told(any < 0)) break;
    for (u32 k = 0; k < 5; ++k) out[k] = static_cast<u8>(bits >> (32 - 8 * k));
  }
  return i;
}

#if VARNIK_HAVE_AVX2
namespace {

constexpr u32 kBlockBytes = 20, kBlockChars = 32;

// Every character's five bits lie in two neighbouring bytes: taken as 16 bits, high byte first, a multiplication moves
// them down from where the character begins.
[[VARNIK_AVX2]] inline __m256i fiveBits(__m256i bytes, __m256i pairs) {
  constexpr short to11 = 1 << 5, to6 = 1 << 10, to9 = 1 << 7, to4 = 1 << 12, to7 = 1 << 9, to10 = 1 << 6, to5 = 1 << 11,
                  to8 = 1 << 8;
  const __m256i shifts = _mm256_broadcastsi128_si256(_mm_setr_epi16(to11, to6, to9, to4, to7, to10, to5, to8));
  return _mm256_and_si256(_mm256_mulhi_epu16(_mm256_shuffle_epi8(bytes, pairs), shifts), _mm256_set1_epi16(31));
}

// The 32 letters of 20 bytes, of which ten stand at the front of the lower half and ten at 6 in the upper one. Packing
// puts the first group of each half before its second.
[[VARNIK_AVX2]] inline __m256i encodedFrom(__m256i bytes) {
  // The eighth character lies in the last byte alone; what is paired with it is masked away.
  const __m256i first = _mm256_setr_epi8(1, 0, 1, 0, 2, 1, 2, 1, 3, 2, 4, 3, 4, 3, 5, 4,  //
                                         7, 6, 7, 6, 8, 7, 8, 7, 9, 8, 10, 9, 10, 9, 11, 10);
  const __m256i second = _mm256_add_epi8(first, _mm256_set1_epi8(5));
  const __m256i values = _mm256_packus_epi16(fiveBits(bytes, first), fiveBits(bytes, second));
  const __m256i digits = _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25));
  const __m256i offset =
      _mm256_sub_epi8(_mm256_set1_epi8('A'), _mm256_and_si256(digits, _mm256_set1_epi8('Z' + 1 - '2')));
  return _mm256_add_epi8(values, offset);
}

// The second half's load begins 4 bytes in, so that it ends with the block.
[[VARNIK_AVX2]] inline void encodeBlock(const u8* in, char* out) {
  const __m128i front = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  const __m128i back = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 4));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), encodedFrom(_mm256_set_m128i(back, front)));
}

// At most one group, padded.
[[VARNIK_AVX2]] inline void encodeGroupShort(const u8* in, u32 n, char* out) {
  u64 bytes = 0;
  for (u32 k = n; k-- != 0;) bytes = bytes << 8 | in[k];
  const __m256i letters = encodedFrom(_mm256_castsi128_si256(_mm_cvtsi64_si128(static_cast<long long>(bytes))));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(letters));
  std::memset(out + charsOf(n), '=', 8 - charsOf(n));
}

// 32 or more for a character outside the alphabet. Either way of reading a character moves its range to the bottom and
// everything else above it, so that the smaller of the two is right.
[[VARNIK_AVX2]] inline __m256i valuesOf(__m256i c) {
  const __m256i lettersOnTop = _mm256_add_epi8(c, _mm256_set1_epi8(static_cast<char>(0xFF - 'Z')));  // 0xE6 to 0xFF
  const __m256i fromLetters =
      _mm256_sub_epi8(_mm256_subs_epu8(lettersOnTop, _mm256_set1_epi8(6)), _mm256_set1_epi8(static_cast<char>(0xE0)));
  const __m256i fromDigits = _mm256_adds_epu8(_mm256_sub_epi8(c, _mm256_set1_epi8('2')), _mm256_set1_epi8(26));
  return _mm256_min_epu8(fromLetters, fromDigits);
}

// A bit for each value of 32 or more.
[[VARNIK_AVX2]] inline u32 faultsOf(__m256i values) {
  return told(static_cast<u32>(_mm256_movemask_epi8(_mm256_adds_epu8(values, _mm256_set1_epi8(0x7F - 31)))));
}

// Ten bytes at the front of each half: pairs of values are joined to 10 bits, then 20, then 40, and their bytes turned
// round.
[[VARNIK_AVX2]] inline __m256i joined(__m256i values) {
  const __m256i tens = _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0120));
  const __m256i twenties = _mm256_madd_epi16(tens, _mm256_set1_epi32(0x00010400));
  const __m256i forties = _mm256_or_si256(_mm256_slli_epi64(twenties, 20), _mm256_srli_epi64(twenties, 32));
  const __m256i order =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(4, 3, 2, 1, 0, 12, 11, 10, 9, 8, -1, -1, -1, -1, -1, -1));
  return _mm256_shuffle_epi8(forties, order);
}

constexpr u32 kOverrunChars = 16;  // the characters of the bytes that a whole store writes behind a block

// Stores 26 bytes, the last 6 of them for nothing.
[[VARNIK_AVX2]] inline bool decodeInnerBlock(const char* in, u8* out) {
  const __m256i values = valuesOf(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(in)));
  const __m256i bytes = joined(values);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 10), _mm256_extracti128_si256(bytes, 1));
  return faultsOf(values) == 0;
}

// Stores a block, and returns how many characters its whole groups are up to the first fault.
[[VARNIK_AVX2]] inline u32 decodeBlock(const char* in, u8* out) {
  const __m256i values = valuesOf(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(in)));
  const __m256i bytes = joined(values);
  const __m128i second = _mm256_extracti128_si256(bytes, 1);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 10), second);
  const u16 last = static_cast<u16>(_mm_extract_epi16(second, 4));
  std::memcpy(out + 18, &last, 2);
  const u32 faults = faultsOf(values);
  return faults == 0 ? kBlockChars : static_cast<u32>(__builtin_ctz(faults)) & ~u32{7};
}

// One group, by way of registers alone.
[[VARNIK_AVX2]] inline u32 decodeGroup(const char* in, u8* out) {
  const __m256i values = valuesOf(_mm256_castsi128_si256(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(in))));
  const long long bytes = _mm_cvtsi128_si64(_mm256_castsi256_si128(joined(values)));
  std::memcpy(out, &bytes, 5);
  return (faultsOf(values) & 0xFF) == 0 ? 8 : 0;
}

// Decodes less than a block through a block of its own; the characters that fill it stand for zeros.
[[VARNIK_AVX2]] inline u32 decodeShort(const char* in, u32 n, u8* out) {
  char text[kBlockChars];
  u8 bytes[kBlockBytes];
  std::memset(text, 'A', sizeof text);
  std::memcpy(text, in, n);
  const u32 good = decodeBlock(text, bytes), count = good < n ? good : n;
  std::memcpy(out, bytes, count / 8 * 5);
  return count;
}

}  // namespace

// Whole groups by blocks, of which the last one overlaps the one before.
[[VARNIK_AVX2]] void base32EncodeAvx2(const u8* in, u32 n, char* out) {
  std::size_t i = 0;  // 8 / 5 * i may pass 32 bits
  const std::size_t whole = n - n % 5;
  for (; whole - i >= kBlockBytes; i += kBlockBytes) encodeBlock(in + i, out + i / 5 * 8);
  if (i < whole && i != 0) {
    i = whole - kBlockBytes;
    encodeBlock(in + i, out + i / 5 * 8);
    i = whole;
  }
  for (; i < n; i += 5) encodeGroupShort(in + i, n - i < 5 ? static_cast<u32>(n - i) : 5, out + i / 5 * 8);
}

// The last block overlaps the one before it.
[[VARNIK_AVX2]] u32 base32DecodeAvx2(const char* in, u32 n, u8* out) {
  n &= ~u32{7};
  if (n == 0) return 0;
  if (n == 8) return decodeGroup(in, out);
  if (n < kBlockChars) return decodeShort(in, n, out);
  u32 i = 0;
  while (n - i >= kBlockChars + kOverrunChars && decodeInnerBlock(in + i, out + i / 8 * 5)) i += kBlockChars;
  while (n != i) {
    const u32 at = n - i < kBlockChars ? n - kBlockChars : i, good = decodeBlock(in + at, out + at / 8 * 5);
    i = at + good;
    if (good < kBlockChars) break;
  }
  return i;
}
#endif

void base32Encode(const u8* in, u32 n, char* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base32EncodeAvx2(in, n, out);
#endif
  base32EncodeScalar(in, n, out);
}

u32 base32Decode(const char* in, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return base32DecodeAvx2(in, n, out);
#endif
  return base32DecodeScalar(in, n, out);
}

}  // namespace vk_simd
