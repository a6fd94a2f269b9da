#include <cstring>

#include "varnik/simd/Branchless.h"
#include "varnik/simd/Hex.h"
#include "varnik/simd/internal/HexAvx512.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {
namespace {

// The value of a digit, negative for any other character.
s32 valueOf(char character) {
  const s32 c = static_cast<u8>(character), folded = c | 0x20;
  return -1 + (maskInRange(c, '0', '9') & (c - '0' + 1)) + (maskInRange(folded, 'a', 'f') & (folded - 'a' + 11));
}

}  // namespace

u32 hexDecodeScalar(const char* in, u32 n, u8* out) {
  u32 i = 0;
  for (; n - i >= 2; i += 2) {
    const s32 high = valueOf(in[i]), low = valueOf(in[i + 1]);
    if (told((high | low) < 0)) break;
    *out++ = static_cast<u8>(high << 4 | low);
  }
  return i;
}

#if VARNIK_HAVE_AVX2
namespace {

// The values of 32 digits; any other character gives 16 or more. Either way of reading a character moves its range to
// the bottom and everything else above it, so that the smaller of the two is right.
[[VARNIK_AVX2]] inline __m256i valuesOf(const char* in) {
  const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
  const __m256i digitsOnTop = _mm256_add_epi8(c, _mm256_set1_epi8(static_cast<char>(0xFF - '9')));  // at 0xF6 to 0xFF
  const __m256i decimal =
      _mm256_sub_epi8(_mm256_subs_epu8(digitsOnTop, _mm256_set1_epi8(6)), _mm256_set1_epi8(static_cast<char>(0xF0)));
  const __m256i upper = _mm256_and_si256(c, _mm256_set1_epi8(static_cast<char>(0xDF)));
  const __m256i letter = _mm256_adds_epu8(_mm256_sub_epi8(upper, _mm256_set1_epi8('A')), _mm256_set1_epi8(10));
  return _mm256_min_epu8(decimal, letter);
}

// A bit for each value of 16 or more.
[[VARNIK_AVX2]] inline u32 faultsOf(__m256i values) {
  return told(static_cast<u32>(_mm256_movemask_epi8(_mm256_adds_epu8(values, _mm256_set1_epi8(0x7F - 15)))));
}

// Pairs become bytes, each in 16 bits.
[[VARNIK_AVX2]] inline __m256i joined(__m256i values) {
  return _mm256_maddubs_epi16(values, _mm256_set1_epi16(0x0110));
}

constexpr u32 kBlockChars = 32;

[[VARNIK_AVX2]] inline bool decodeTwoBlocks(const char* in, u8* out) {
  const __m256i a = valuesOf(in), b = valuesOf(in + kBlockChars);
  if (faultsOf(_mm256_or_si256(a, b)) != 0) return false;
  const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(joined(a), joined(b)), 0xD8);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
  return true;
}

// Stores a block, and returns how many characters its whole pairs are up to the first fault.
[[VARNIK_AVX2]] inline u32 decodeBlock(const char* in, u8* out) {
  const __m256i values = valuesOf(in), words = joined(values);
  const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(words, words), 0xD8);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
  const u32 faults = faultsOf(values);
  return faults == 0 ? kBlockChars : static_cast<u32>(__builtin_ctz(faults)) & ~u32{1};
}

// Decodes less than a block through a block of its own.
[[VARNIK_AVX2]] inline u32 decodeShort(const char* in, u32 n, u8* out) {
  char text[kBlockChars];
  u8 bytes[kBlockChars / 2];
  std::memset(text, '0', sizeof text);
  std::memcpy(text, in, n);
  const u32 good = decodeBlock(text, bytes), count = good < n ? good : n;
  std::memcpy(out, bytes, count / 2);
  return count;
}

}  // namespace

// The last block overlaps the one before it.
[[VARNIK_AVX2]] u32 hexDecodeAvx2(const char* in, u32 n, u8* out) {
  if (n < 8) return hexDecodeScalar(in, n, out);
  n &= ~u32{1};
  if (n < kBlockChars) return decodeShort(in, n, out);
  u32 i = 0;
  while (n - i >= 2 * kBlockChars && decodeTwoBlocks(in + i, out + i / 2)) i += 2 * kBlockChars;
  while (n != i) {
    const u32 at = n - i < kBlockChars ? n - kBlockChars : i, good = decodeBlock(in + at, out + at / 2);
    i = at + good;
    if (good < kBlockChars) break;
  }
  return i;
}
#endif

#if VARNIK_HAVE_AVX512
namespace {

// Pairs become bytes, each in 16 bits.
[[VARNIK_AVX512]] inline __m512i joined(__m512i values) {
  return _mm512_maddubs_epi16(_mm512_and_si512(values, _mm512_set1_epi8(15)), _mm512_set1_epi16(0x0110));
}

// Decodes up to a block of 64, reading no more and writing what is right; returns how many characters that was.
[[VARNIK_AVX512]] inline u32 decodePart(const char* in, u32 n, __m512i table, u8* out) {
  const __m512i text = _mm512_mask_loadu_epi8(_mm512_set1_epi8('0'), _bzhi_u64(~u64{0}, n), in);
  const HexValues digits = hexValues(text, table);
  const u64 faults = hexFaults(digits.faults, digits.faults);
  const u32 good = faults == 0 ? n : static_cast<u32>(__builtin_ctzll(faults)) & ~u32{1};
  // Under a mask of all lanes: GCC 12 warns of an uninitialised operand of the form without one.
  const __m256i bytes = _mm512_maskz_cvtepi16_epi8(~u32{0}, joined(digits.values));
  _mm256_mask_storeu_epi8(out, _bzhi_u32(~u32{0}, good / 2), bytes);
  return good;
}

[[VARNIK_AVX512]] inline bool decodeTwoParts(const char* in, __m512i table, u8* out) {
  const HexValues a = hexValues(_mm512_loadu_si512(in), table), b = hexValues(_mm512_loadu_si512(in + 64), table);
  if (hexFaults(a.faults, b.faults) != 0) return false;
  const __m512i bytes = _mm512_packus_epi16(joined(a.values), joined(b.values));
  const __m512i inOrder = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
  _mm512_storeu_si512(out, _mm512_maskz_permutexvar_epi64(0xFF, inOrder, bytes));
  return true;
}

}  // namespace

[[VARNIK_AVX512]] u32 hexDecodeAvx512(const char* in, u32 n, u8* out) {
  constexpr u32 kPart = 64;
  const __m512i table = hexTable();
  n &= ~u32{1};
  u32 i = 0;
  while (n - i >= 2 * kPart && decodeTwoParts(in + i, table, out + i / 2)) i += 2 * kPart;
  while (n != i) {
    const u32 part = n - i < kPart ? n - i : kPart, good = decodePart(in + i, part, table, out + i / 2);
    i += good;
    if (good < part) break;
  }
  return i;
}
#endif

u32 hexDecode(const char* in, u32 n, u8* out) {
#if VARNIK_HAVE_AVX512
  if (hasAvx512()) return hexDecodeAvx512(in, n, out);
#endif
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return hexDecodeAvx2(in, n, out);
#elif VARNIK_HAVE_NEON
  return hexDecodeNeon(in, n, out);
#endif
  return hexDecodeScalar(in, n, out);
}

}  // namespace vk_simd
