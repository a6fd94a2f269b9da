// Blocks of 32 bytes: of ASCII they are copied; where the charset has the upper characters of Latin-1 in their places,
// blocks of those and ASCII go by vectors; the rest goes byte by byte.
#include "varnik/simd/internal/SingleByteSteps.h"
#include "varnik/simd/internal/UtfAvx2.h"

#if VARNIK_HAVE_AVX2
#include "varnik/simd/internal/ShuffleTables.h"

namespace vk_simd {
namespace {

constexpr u32 kBlock = 32;
constexpr u32 kRoom = 64;  // what a block may write

[[VARNIK_AVX2]] inline __m256i bytesOf(u32 value) {
  return _mm256_set1_epi8(static_cast<s8>(value));
}

// A set bit for each byte that a charset with some upper characters of Latin-1 has for something else.
[[VARNIK_AVX2]] inline u32 notLatin(__m256i block, const SingleByteCharset& charset) {
  if (charset.latinFrom == 0x80) return 0;
  return bitsOf(_mm256_cmpeq_epi8(_mm256_and_si256(block, bytesOf(0xE0)), bytesOf(0x80)));
}

// Writes eight pairs of a lead byte and a last one; a set bit in `ascii` drops the lead.
[[VARNIK_AVX2]] inline u32 putPairs(__m128i pairs, u32 ascii, u8* out) {
  storeHalf(out, _mm_shuffle_epi8(pairs, loadHalf(kPairTails[ascii].data())));
  return 16 - static_cast<u32>(__builtin_popcount(ascii));
}

// Writes a block of Latin-1 as UTF-8 and returns its bytes.
[[VARNIK_AVX2]] inline u32 putLatin(__m256i block, u32 high, u8* out) {
  // A byte from 0x80 on loses bit 6 to its lead byte, C2 or C3.
  const __m256i taken = _mm256_and_si256(
      _mm256_srli_epi16(block, 1), _mm256_and_si256(bytesOf(0x40), _mm256_cmpgt_epi8(_mm256_setzero_si256(), block)));
  const __m256i last = _mm256_andnot_si256(taken, block);
  const __m256i lead = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(block, 6), bytesOf(3)), bytesOf(0xC0));
  const __m256i even = _mm256_unpacklo_epi8(lead, last), odd = _mm256_unpackhi_epi8(lead, last);
  const u32 ascii = ~high;
  u32 at = putPairs(_mm256_castsi256_si128(even), ascii & 0xFF, out);
  at += putPairs(_mm256_castsi256_si128(odd), ascii >> 8 & 0xFF, out + at);
  at += putPairs(_mm256_extracti128_si256(even, 1), ascii >> 16 & 0xFF, out + at);
  return at + putPairs(_mm256_extracti128_si256(odd, 1), ascii >> 24, out + at);
}

// Copies the blocks of ASCII at the front.
[[VARNIK_AVX2]] inline void copyAscii(UtfCursor& c) {
  Stretch s(c);
  while (s.left >= 4 * kBlock && s.room >= 4 * kBlock) {
    const __m256i k = loadBlock(s.in), l = loadBlock(s.in + 32), m = loadBlock(s.in + 64), n = loadBlock(s.in + 96);
    if (bitsOf(_mm256_or_si256(_mm256_or_si256(k, l), _mm256_or_si256(m, n))) != 0) break;
    storeBlock(s.out, k);
    storeBlock(s.out + 32, l);
    storeBlock(s.out + 64, m);
    storeBlock(s.out + 96, n);
    s.advance(4 * kBlock, 4 * kBlock);
  }
  while (s.left >= kBlock && s.room >= kBlock) {
    const __m256i block = loadBlock(s.in);
    if (bitsOf(block) != 0) break;
    storeBlock(s.out, block);
    s.advance(kBlock, kBlock);
  }
  s.save(c);
}

// Takes blocks with other characters, up to some of ASCII in a row. False when a character does not fit.
[[VARNIK_AVX2]] inline bool takeBytes(UtfCursor& c, const SingleByteCharset& from) {
  const bool hasLatin = from.latinFrom <= 0xFF;
  bool fits = true;
  Stretch s(c);
  for (u32 ascii = 0; fits && ascii < kAsciiRun && s.left >= kBlock && s.room >= kRoom;) {
    const __m256i block = loadBlock(s.in);
    const u32 high = bitsOf(block);
    ascii = high == 0 ? ascii + 1 : 0;
    if (hasLatin && notLatin(block, from) == 0) {
      s.advance(kBlock, putLatin(block, high, s.out));
    } else {
      s.save(c);
      fits = bytesToUtf8(c, from, c.read + kBlock);
      s = Stretch(c);
    }
  }
  s.save(c);
  return fits;
}

// Takes the last bytes, fewer than a block has, filled up with zero bytes that are not counted.
[[VARNIK_AVX2]] inline void takeLastBytes(UtfCursor& c, const SingleByteCharset& from) {
  const u32 rest = c.left();
  if (!from.ascii || rest == 0 || rest >= kBlock || c.roomLeft() < kRoom) return;
  const __m256i block = loadUpTo32(c.in + c.read, rest);
  const u32 high = bitsOf(block);
  if (high != 0 && (from.latinFrom > 0xFF || notLatin(block, from) != 0)) return;
  c.written += putLatin(block, high, c.out + c.written) - (kBlock - rest);
  c.read += rest;
}

// Writes eight bytes of those whose bits are set.
[[VARNIK_AVX2]] inline u32 putKept(u64 eight, u32 kept, u8* out) {
  const __m128i order = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kKeptLanes[kept].data()));
  const __m128i bytes = _mm_shuffle_epi8(_mm_cvtsi64_si128(static_cast<s64>(eight)), order);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
  return static_cast<u32>(__builtin_popcount(kept));
}

// Converts a block of ASCII and U+0080 to U+00FF that the charset has; false where there is something else in it. Of
// the block, the last `filled` bytes are zero bytes that do not count.
[[VARNIK_AVX2]] inline bool putLatinBytes(Stretch& s, const SingleByteCharset& to, __m256i block, u32 filled) {
  const u32 continued = bitsOf(_mm256_cmpgt_epi8(bytesOf(0xC0), block));
  const u32 leads = bitsOf(_mm256_cmpeq_epi8(_mm256_and_si256(block, bytesOf(0xFE)), bytesOf(0xC2)));
  if (leads << 1 != continued || (bitsOf(block) & ~continued) != leads) return false;
  // A byte behind C3 gets bit 6 back; the byte in front of the block's first is none of its characters'.
  const __m256i isC3 = _mm256_cmpeq_epi8(block, bytesOf(0xC3));
  const __m256i behindC3 = _mm256_alignr_epi8(isC3, _mm256_permute2x128_si256(isC3, isC3, 0x08), 15);
  const __m256i bytes = _mm256_or_si256(block, _mm256_and_si256(behindC3, bytesOf(0x40)));
  if ((notLatin(bytes, to) & continued) != 0) return false;
  alignas(32) u64 eights[4];
  _mm256_store_si256(reinterpret_cast<__m256i*>(eights), bytes);
  u32 size = 0;
  for (u32 i = 0; i < 4; ++i) size += putKept(eights[i], ~leads >> (8 * i) & 0xFF, s.out + size);
  s.advance(kBlock - filled - (leads >> 31), size - filled);
  return true;
}

[[VARNIK_AVX2]] inline void takeCharacters(UtfCursor& c, const SingleByteCharset& to) {
  const bool hasLatin = to.latinFrom <= 0xFF;
  Stretch s(c);
  for (u32 ascii = 0; ascii < kAsciiRun && s.left >= kBlock && s.room >= kRoom;) {
    const __m256i block = loadBlock(s.in);
    ascii = bitsOf(block) == 0 ? ascii + 1 : 0;
    if (hasLatin && putLatinBytes(s, to, block, 0)) continue;
    s.save(c);
    utf8ToBytes(c, to, c.read + kBlock);  // there is room for whatever a block becomes
    s = Stretch(c);
  }
  s.save(c);
}

[[VARNIK_AVX2]] inline void takeLastCharacters(UtfCursor& c, const SingleByteCharset& to) {
  Stretch s(c);
  if (!to.ascii || s.left == 0 || s.left >= kBlock || s.room < kRoom) return;
  const __m256i block = loadUpTo32(s.in, s.left);
  if (to.latinFrom <= 0xFF || bitsOf(block) == 0) putLatinBytes(s, to, block, kBlock - s.left);
  s.save(c);
}

}  // namespace

[[VARNIK_AVX2]] UtfProgress singleByteToUtf8Avx2(const SingleByteCharset& from, const u8* data, u32 n, u8* out,
                                                 u32 room) {
  UtfCursor c{data, n, out, room};
  while (from.ascii && c.left() >= kBlock && c.roomLeft() >= kRoom) {
    copyAscii(c);
    if (!takeBytes(c, from)) break;
  }
  takeLastBytes(c, from);
  bytesToUtf8(c, from, n);
  return c.progress();
}

[[VARNIK_AVX2]] u64 singleByteUtf8LengthAvx2(const SingleByteCharset& from, const u8* data, u32 n) {
  u64 sum = 0;
  u32 i = 0;
  for (; from.ascii && n - i >= kBlock; i += kBlock) {
    const __m256i block = loadBlock(data + i);
    const u32 high = bitsOf(block);
    if (high == 0 || (from.latinFrom <= 0xFF && notLatin(block, from) == 0))
      sum += kBlock + static_cast<u32>(__builtin_popcount(high));
    else
      sum += singleByteUtf8LengthScalar(from, data + i, kBlock);
  }
  return sum + singleByteUtf8LengthScalar(from, data + i, n - i);
}

[[VARNIK_AVX2]] UtfProgress utf8ToSingleByteAvx2(const SingleByteCharset& to, const u8* data, u32 n, u8* out,
                                                 u32 room) {
  UtfCursor c{data, n, out, room};
  while (to.ascii && c.left() >= kBlock && c.roomLeft() >= kRoom) {
    copyAscii(c);
    takeCharacters(c, to);
  }
  takeLastCharacters(c, to);
  utf8ToBytes(c, to, n);
  return c.progress();
}

}  // namespace vk_simd
#endif
