#include "varnik/simd/UuLines.h"

#if VARNIK_HAVE_AVX2
#include <immintrin.h>
#endif

namespace vk_simd {

namespace {

constexpr u32 kFullLine = 1 + kUuLineChars;  // the count and the data

u8* putGroup(u32 bits, u8* out) {
  for (u32 shift = 24; shift != 0;) *out++ = uuChar(bits >> (shift -= 6) & 0x3F);
  return out;
}

// One line of up to 45 bytes; what lacks of the last group is zero.
u8* putLine(const u8* from, u32 n, u8* out) {
  *out++ = uuChar(n);
  u32 i = 0;
  for (; n - i >= 3; i += 3) out = putGroup(u32{from[i]} << 16 | u32{from[i + 1]} << 8 | from[i + 2], out);
  if (n - i == 2) out = putGroup(u32{from[i]} << 16 | u32{from[i + 1]} << 8, out);
  if (n - i == 1) out = putGroup(u32{from[i]} << 16, out);
  *out++ = '\n';
  return out;
}

bool readLine(const u8* text, u8* out) {
  for (u32 i = 0; i < kUuLineChars; i += 4) {
    u32 bits = 0;
    for (u32 k = 0; k < 4; ++k) {
      if (!isUuChar(text[i + k])) return false;
      bits = bits << 6 | uuBits(text[i + k]);
    }
    *out++ = static_cast<u8>(bits >> 16);
    *out++ = static_cast<u8>(bits >> 8);
    *out++ = static_cast<u8>(bits);
  }
  return true;
}

// The length of the line end at text[0, n): 1, 2, or 0 for none. REQUIRES: `n` is above 0.
u32 lineEndAt(const u8* text, u32 n) {
  if (text[0] == '\n') return 1;
  return n >= 2 && text[0] == '\r' && text[1] == '\n' ? 2 : 0;
}

}  // namespace

u32 putUuLinesScalar(const u8* from, u32 n, u8* out) {
  u8* p = out;
  for (u32 i = 0; i < n; i += kUuLineBytes) {
    p = putLine(from + i, n - i < kUuLineBytes ? n - i : kUuLineBytes, p);
    if (n - i <= kUuLineBytes) break;
  }
  return static_cast<u32>(p - out);
}

UuRun readUuLinesScalar(const u8* text, u32 n, u8* out) {
  UuRun done{0, 0};
  while (n - done.chars > kFullLine) {
    const u8* const line = text + done.chars;
    const u32 end = lineEndAt(line + kFullLine, n - done.chars - kFullLine);
    if (line[0] != uuChar(kUuLineBytes) || end == 0 || !readLine(line + 1, out + done.bytes)) break;
    done.chars += kFullLine + end;
    done.bytes += kUuLineBytes;
  }
  return done;
}

#if VARNIK_HAVE_AVX2
namespace {

// 24 bytes become 32 characters; 28 are read.
//   bytes of a group  aaaaaabb bbbbcccc ccdddddd, spread to the 16-bit lanes  bbbbcccc aaaaaabb | ccdddddd bbbbcccc
[[VARNIK_AVX2]] inline void put32(const u8* from, u8* out) {
  const __m256i spread = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10,  //
                                          1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
  const __m256i bytes = _mm256_set_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 12)),
                                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
  const __m256i lanes = _mm256_shuffle_epi8(bytes, spread);
  const __m256i ac = _mm256_mulhi_epu16(_mm256_and_si256(lanes, _mm256_set1_epi32(0x0FC0FC00)),
                                        _mm256_set1_epi32(0x04000040));  // shifted right by 10 and 6
  const __m256i bd = _mm256_mullo_epi16(_mm256_and_si256(lanes, _mm256_set1_epi32(0x003F03F0)),
                                        _mm256_set1_epi32(0x01000010));  // shifted left by 4 and 8
  const __m256i bits = _mm256_or_si256(ac, bd);
  const __m256i zero = _mm256_cmpeq_epi8(bits, _mm256_setzero_si256());
  const __m256i chars =
      _mm256_add_epi8(_mm256_add_epi8(bits, _mm256_set1_epi8(0x20)), _mm256_and_si256(zero, _mm256_set1_epi8(0x40)));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), chars);
}

// 32 characters become 24 bytes; 32 are written. Returns one bit for each character that is none.
[[VARNIK_AVX2]] inline u32 read32(const u8* text, u8* out) {
  const __m256i chars = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
  const __m256i above = _mm256_sub_epi8(chars, _mm256_set1_epi8(0x20));
  const __m256i good = _mm256_cmpeq_epi8(_mm256_min_epu8(above, _mm256_set1_epi8(0x40)), above);
  const __m256i bits = _mm256_and_si256(above, _mm256_set1_epi8(0x3F));
  const __m256i pairs = _mm256_maddubs_epi16(bits, _mm256_set1_epi32(0x01400140));
  const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
  const __m256i order = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,  //
                                         2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
  const __m256i halves = _mm256_shuffle_epi8(groups, order);
  const __m256i joined = _mm256_permutevar8x32_epi32(halves, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), joined);
  return ~static_cast<u32>(_mm256_movemask_epi8(good));
}

}  // namespace

[[VARNIK_AVX2]] u32 putUuLinesAvx2(const u8* from, u32 n, u8* out) {
  u8* p = out;
  u32 i = 0;
  for (; n - i >= 24 + 28; i += kUuLineBytes) {
    *p++ = uuChar(kUuLineBytes);
    put32(from + i, p);
    put32(from + i + 24, p + 32);  // its last four characters make room for the line end
    p += kUuLineChars;
    *p++ = '\n';
  }
  return static_cast<u32>(p - out) + putUuLinesScalar(from + i, n - i, p);
}

[[VARNIK_AVX2]] UuRun readUuLinesAvx2(const u8* text, u32 n, u8* out) {
  constexpr u32 kLastBlock = (1U << (kUuLineChars - 32)) - 1;
  UuRun done{0, 0};
  while (n - done.chars >= 1 + 64) {
    const u8* const line = text + done.chars;
    const u32 end = lineEndAt(line + kFullLine, n - done.chars - kFullLine);
    if (line[0] != uuChar(kUuLineBytes) || end == 0) break;
    const u32 bad = read32(line + 1, out + done.bytes) | (read32(line + 33, out + done.bytes + 24) & kLastBlock);
    if (bad != 0) break;
    done.chars += kFullLine + end;
    done.bytes += kUuLineBytes;
  }
  return done;
}
#endif

u32 putUuLines(const u8* from, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return putUuLinesAvx2(from, n, out);
#endif
  return putUuLinesScalar(from, n, out);
}

UuRun readUuLines(const u8* text, u32 n, u8* out) {
#if VARNIK_HAVE_AVX2
  if (hasAvx2()) return readUuLinesAvx2(text, n, out);
#endif
  return readUuLinesScalar(text, n, out);
}

}  // namespace vk_simd
