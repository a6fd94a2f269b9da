// UTF-16 and UTF-32 to UTF-8. Eight characters at a time are spread over lanes of four bytes, which end in the
// character's last byte:
//
//   U+0041    00 00 00 41        one byte stays     lengths become an index into kLaneTails, whose shuffle moves
//   U+00E9    00 00 C3 A9        two                what stays of four lanes together
//   U+20AC    00 E2 82 AC        three
//   U+1F600   F0 9F 98 80        four
//
// Text changes between ASCII and other characters all the time, and a branch that follows it is guessed wrong all the
// time. So the loops change gear only after some blocks in a row that a faster one could have taken.
#include "varnik/simd/internal/UtfAvx2.h"

#if VARNIK_HAVE_AVX2
#include "varnik/simd/internal/ShuffleTables.h"

namespace vk_simd {
namespace {

constexpr u32 kBlock = 32;      // bytes of input
constexpr u32 kLookAhead = 34;  // what a block reads: the unit behind it may be the second half of a pair
constexpr u32 kRoom = 64;       // what a block may write, and more
constexpr u32 kAsciiRun = 3;    // blocks of ASCII in a row that are worth a change of gear
constexpr u32 kNarrowRun = 3;   // the same for characters below U+0800

template <class From>
constexpr bool kIsWide = sizeof(typename From::Unit) == 4;

[[VARNIK_AVX2]] inline __m256i lanesOf(u32 value) {
  return _mm256_set1_epi32(static_cast<s32>(value));
}
[[VARNIK_AVX2]] inline __m256i unitsOf(u32 value) {
  return _mm256_set1_epi16(static_cast<s16>(value));
}

// Loads a block of units in the processor's order.
template <class From>
[[VARNIK_AVX2]] inline __m256i loadUnits(const u8* p) {
  const __m256i block = loadBlock(p);
  if constexpr (From::kEndian == std::endian::little) return block;
  const __m128i order = kIsWide<From> ? _mm_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3)
                                      : _mm_set_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
  return _mm256_shuffle_epi8(block, _mm256_broadcastsi128_si256(order));
}

[[VARNIK_AVX2]] inline __m256i lowHalf(__m256i units) {
  return _mm256_cvtepu16_epi32(_mm256_castsi256_si128(units));
}
[[VARNIK_AVX2]] inline __m256i highHalf(__m256i units) {
  return _mm256_cvtepu16_epi32(_mm256_extracti128_si256(units, 1));
}

// The low bytes of the units of two blocks.
[[VARNIK_AVX2]] inline __m256i pack16(__m256i a, __m256i b) {
  return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
}

// Writes four characters, by their lengths less one in two bits each; returns how many bytes that are.
[[VARNIK_AVX2]] inline u32 putLanes(__m128i lanes, u32 bits0, u32 bits1, u8* out) {
  storeHalf(out, _mm_shuffle_epi8(lanes, loadHalf(kLaneTails[bits0 | bits1 << 4].data())));
  return 4 + static_cast<u32>(__builtin_popcount(bits0) + 2 * __builtin_popcount(bits1));
}

// Writes eight characters; kSupplementary: there may be some above U+FFFF.
template <bool kSupplementary>
[[VARNIK_AVX2]] inline u32 putEight(__m256i codes, u8* out) {
  const __m256i two = _mm256_cmpgt_epi32(codes, lanesOf(0x7F)), three = _mm256_cmpgt_epi32(codes, lanesOf(0x7FF));
  const __m256i six = lanesOf(0x3F);
  __m256i lanes = _mm256_slli_epi32(_mm256_andnot_si256(_mm256_and_si256(two, lanesOf(0xFFC0)), codes), 24);
  lanes = _mm256_or_si256(lanes, _mm256_slli_epi32(_mm256_and_si256(_mm256_srli_epi32(codes, 6), six), 16));
  lanes = _mm256_or_si256(lanes, _mm256_slli_epi32(_mm256_and_si256(_mm256_srli_epi32(codes, 12), six), 8));
  // The marks of two bytes, and how they change for three and for four.
  __m256i marks =
      _mm256_xor_si256(_mm256_and_si256(two, lanesOf(0x80C00000)), _mm256_and_si256(three, lanesOf(0x0040E000)));
  __m256i odd = _mm256_xor_si256(two, three);  // the length less one is odd
  if constexpr (kSupplementary) {
    const __m256i four = _mm256_cmpgt_epi32(codes, lanesOf(0xFFFF));
    lanes = _mm256_or_si256(lanes, _mm256_srli_epi32(codes, 18));
    marks = _mm256_xor_si256(marks, _mm256_and_si256(four, lanesOf(0x000060F0)));
    odd = _mm256_xor_si256(odd, four);
  }
  lanes = _mm256_or_si256(lanes, marks);
  const u32 bits0 = static_cast<u32>(_mm256_movemask_ps(_mm256_castsi256_ps(odd)));
  const u32 bits1 = static_cast<u32>(_mm256_movemask_ps(_mm256_castsi256_ps(three)));
  const u32 size = putLanes(_mm256_castsi256_si128(lanes), bits0 & 15, bits1 & 15, out);
  return size + putLanes(_mm256_extracti128_si256(lanes, 1), bits0 >> 4, bits1 >> 4, out + size);
}

// Writes eight of the units that putNarrow has spread; a set bit in `ascii` is a character of one byte.
[[VARNIK_AVX2]] inline u32 putPairs(__m128i pairs, u32 ascii, u8* out) {
  storeHalf(out, _mm_shuffle_epi8(pairs, loadHalf(kPairTails[ascii].data())));
  return 16 - static_cast<u32>(__builtin_popcount(ascii));
}

// Writes a block of units below U+0800.
[[VARNIK_AVX2]] inline u32 putNarrow(__m256i units, u8* out) {
  const __m256i isAscii = _mm256_cmpgt_epi16(unitsOf(0x80), units);
  const __m256i last = _mm256_slli_epi16(_mm256_and_si256(units, unitsOf(0x3F)), 8);
  const __m256i two = _mm256_or_si256(_mm256_or_si256(last, _mm256_srli_epi16(units, 6)), unitsOf(0x80C0));
  const __m256i pairs = _mm256_blendv_epi8(two, _mm256_slli_epi16(units, 8), isAscii);
  const __m128i flags = _mm_packs_epi16(_mm256_castsi256_si128(isAscii), _mm256_extracti128_si256(isAscii, 1));
  const u32 ascii = static_cast<u32>(_mm_movemask_epi8(flags));
  const u32 size = putPairs(_mm256_castsi256_si128(pairs), ascii & 0xFF, out);
  return size + putPairs(_mm256_extracti128_si256(pairs, 1), ascii >> 8, out + size);
}

struct Done {
  u32 read = 0, written = 0;  // read is 0 where the scalar code must do it
};

// Writes eight units, among them pairs that `first` tells the high surrogates of: a pair becomes one character in the
// place of its first unit, and the second unit is dropped.
[[VARNIK_AVX2]] inline u32 putEightWithPairs(__m256i units, __m256i next, u32 low, u8* out) {
  const __m256i joined = _mm256_sub_epi32(_mm256_add_epi32(_mm256_slli_epi32(units, 10), next), lanesOf(0x35FDC00));
  const __m256i isHigh = _mm256_cmpeq_epi32(_mm256_and_si256(units, lanesOf(0xFC00)), lanesOf(0xD800));
  const __m256i codes = _mm256_blendv_epi8(units, joined, isHigh);
  // What is behind the characters that stay is taken for zero bytes, one each, and not counted.
  const __m256i order =
      _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(kKeptLanes[low ^ 0xFF].data())));
  const __m256i isKept = _mm256_cmpgt_epi32(lanesOf(8), order);
  const __m256i kept = _mm256_and_si256(_mm256_permutevar8x32_epi32(codes, order), isKept);
  return putEight<true>(kept, out) - static_cast<u32>(__builtin_popcount(low));
}

// A block with surrogates in it. One that the end of the block parts from its other half is left for the next block.
template <class From>
[[VARNIK_AVX2]] inline Done putWithPairs(const u8* p, __m256i units, u8* out) {
  const __m256i kind = _mm256_and_si256(units, unitsOf(0xFC00));
  const u32 highs = bitsOf(_mm256_cmpeq_epi16(kind, unitsOf(0xD800)));  // two bits a unit
  const u32 lows = bitsOf(_mm256_cmpeq_epi16(kind, unitsOf(0xDC00)));
  if (highs << 2 != lows) return {};
  const bool isCut = highs >> 31 != 0;
  const __m256i next = loadUnits<From>(p + 2);
  const u32 low = _pext_u32(lows, 0x55555555) | (isCut ? 0x8000u : 0);  // what is cut is dropped like a second unit
  const u32 size = putEightWithPairs(lowHalf(units), lowHalf(next), low & 0xFF, out);
  return {kBlock - (isCut ? 2 : 0), size + putEightWithPairs(highHalf(units), highHalf(next), low >> 8, out + size)};
}

[[VARNIK_AVX2]] inline bool haveSurrogates(__m256i units) {
  return bitsOf(_mm256_cmpeq_epi16(_mm256_and_si256(units, unitsOf(0xF800)), unitsOf(0xD800))) != 0;
}

template <class From>
[[VARNIK_AVX2]] inline Done putBlock16(const u8* p, __m256i units, u8* out) {
  if (haveSurrogates(units)) return putWithPairs<From>(p, units, out);
  const u32 size = putEight<false>(lowHalf(units), out);
  return {kBlock, size + putEight<false>(highHalf(units), out + size)};
}

[[VARNIK_AVX2]] inline Done putBlock32(__m256i codes, u8* out) {
  const __m256i last = lanesOf(0x10FFFF);
  const __m256i inRange = _mm256_cmpeq_epi32(_mm256_max_epu32(codes, last), last);
  const __m256i surrogate = _mm256_cmpeq_epi32(_mm256_and_si256(codes, lanesOf(0xFFFFF800)), lanesOf(0xD800));
  if (bitsOf(_mm256_andnot_si256(surrogate, inRange)) != 0xFFFFFFFF) return {};
  return {kBlock, putEight<true>(codes, out)};
}

template <class From>
[[VARNIK_AVX2]] inline Done putBlock(const u8* p, __m256i units, u8* out) {
  if constexpr (kIsWide<From>) return putBlock32(units, out);
  return putBlock16<From>(p, units, out);
}

template <class From>
[[VARNIK_AVX2]] inline bool isAscii(__m256i units) {
  return isClear(units, kIsWide<From> ? lanesOf(0xFFFFFF80) : unitsOf(0xFF80));
}

// Writes a block of ASCII.
template <class From>
[[VARNIK_AVX2]] inline void putAscii(__m256i units, u8* out) {
  const __m256i narrow = kIsWide<From> ? _mm256_permute4x64_epi64(_mm256_packus_epi32(units, units), 0xD8) : units;
  const __m128i bytes = _mm256_castsi256_si128(pack16(narrow, narrow));
  if constexpr (kIsWide<From>)
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
  else
    storeHalf(out, bytes);
}

// Writes four blocks of ASCII.
template <class From>
[[VARNIK_AVX2]] inline void putAscii4(__m256i a, __m256i b, __m256i c, __m256i d, u8* out) {
  if constexpr (kIsWide<From>) {
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);  // undoes the packing by halves
    const __m256i bytes = _mm256_packus_epi16(_mm256_packus_epi32(a, b), _mm256_packus_epi32(c, d));
    storeBlock(out, _mm256_permutevar8x32_epi32(bytes, order));
  } else {
    storeBlock(out, pack16(a, b));
    storeBlock(out + 32, pack16(c, d));
  }
}

// Takes the blocks of ASCII at the front.
template <class From>
[[VARNIK_AVX2]] inline void takeAscii(UtfCursor& c) {
  constexpr u32 kCharacters = kBlock / sizeof(typename From::Unit);
  while (c.left() >= 4 * kBlock && c.roomLeft() >= kRoom) {
    const u8* const p = c.in + c.read;
    const __m256i k = loadUnits<From>(p), l = loadUnits<From>(p + 32);
    const __m256i m = loadUnits<From>(p + 64), n = loadUnits<From>(p + 96);
    if (!isAscii<From>(_mm256_or_si256(_mm256_or_si256(k, l), _mm256_or_si256(m, n)))) break;
    putAscii4<From>(k, l, m, n, c.out + c.written);
    c.read += 4 * kBlock;
    c.written += 4 * kCharacters;
  }
  while (c.left() >= kBlock && c.roomLeft() >= kRoom) {
    const __m256i units = loadUnits<From>(c.in + c.read);
    if (!isAscii<From>(units)) return;
    putAscii<From>(units, c.out + c.written);
    c.read += kBlock;
    c.written += kCharacters;
  }
}

// Takes blocks of any characters, up to some of ASCII in a row. False when a character does not fit.
template <class From>
[[VARNIK_AVX2]] inline bool takeOthers(UtfCursor& c) {
  u32 ascii = 0, narrow = 0;
  while (ascii < kAsciiRun && c.left() >= kLookAhead && c.roomLeft() >= kRoom) {
    const u8* const p = c.in + c.read;
    const __m256i units = loadUnits<From>(p);
    ascii = isAscii<From>(units) ? ascii + 1 : 0;
    Done done;
    if constexpr (!kIsWide<From>) {
      narrow = isClear(units, unitsOf(0xF800)) ? narrow + 1 : 0;
      if (narrow > kNarrowRun) done = {kBlock, putNarrow(units, c.out + c.written)};
    }
    if (narrow <= kNarrowRun) done = putBlock<From>(p, units, c.out + c.written);
    c.read += done.read;
    c.written += done.written;
    if (done.read == 0 && !convertTo<From, Utf8>(c, c.read + kBlock)) return false;
  }
  return true;
}

// What is too short for a block that looks ahead.
template <class From>
[[VARNIK_AVX2]] inline void takeTail(UtfCursor& c) {
  constexpr u32 kUnit = sizeof(typename From::Unit);
  const u32 rest = c.left() / kUnit * kUnit;
  if (rest == 0 || rest > kBlock || c.roomLeft() < kRoom) return;
  alignas(32) u8 padded[2 * kBlock] = {};
  __builtin_memcpy(padded, c.in + c.read, rest);
  const Done done = putBlock<From>(padded, loadUnits<From>(padded), c.out + c.written);
  if (done.read != kBlock) return;
  c.read += rest;
  c.written += done.written - (kBlock - rest) / kUnit;
}

}  // namespace

template <class From>
[[VARNIK_AVX2]] void convertToUtf8Avx2(UtfCursor& c) {
  while (c.left() >= kLookAhead && c.roomLeft() >= kRoom) {
    takeAscii<From>(c);
    if (!takeOthers<From>(c)) return;
  }
  takeTail<From>(c);
  convertTo<From, Utf8>(c, c.n);
}

template void convertToUtf8Avx2<Utf16Le>(UtfCursor&);
template void convertToUtf8Avx2<Utf16Be>(UtfCursor&);
template void convertToUtf8Avx2<Utf32Le>(UtfCursor&);
template void convertToUtf8Avx2<Utf32Be>(UtfCursor&);

}  // namespace vk_simd
#endif
