// UTF-16 and UTF-32 to UTF-8. Eight characters at a time are spread over lanes of four bytes, which end in the
// character's last byte:
//
//   U+0041    .. .. .. 41        one byte stays     the lengths become an index into a table of shuffles, which move
//   U+00E9    .. .. C3 A9        two                what stays of four lanes together
//   U+20AC    .. E2 82 AC        three
//   U+1F600   F0 9F 98 80        four
#include "varnik/simd/internal/UtfAvx2.h"

#if VARNIK_HAVE_AVX2
#include "varnik/simd/internal/ShuffleTables.h"

namespace vk_simd {
namespace {

constexpr u32 kBlock = 32;     // bytes of input
constexpr u32 kRoom = 64;      // what a block may write, and more
constexpr u32 kNarrowRun = 4;  // blocks of characters below U+0800 in a row that are worth a change of gear

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
[[VARNIK_AVX2]] inline __m256i unitsIn(__m256i block) {
  if constexpr (From::kEndian == std::endian::little) return block;
  const __m128i order = kIsWide<From> ? _mm_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3)
                                      : _mm_set_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
  return _mm256_shuffle_epi8(block, _mm256_broadcastsi128_si256(order));
}

template <class From>
[[VARNIK_AVX2]] inline __m256i loadUnits(const u8* p) {
  return unitsIn<From>(loadBlock(p));
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

// Writes what stays of four characters; returns how many bytes that are.
[[VARNIK_AVX2]] inline u32 putLanes(__m128i lanes, const TailTable& tails, u32 index, u8* out) {
  storeHalf(out, _mm_shuffle_epi8(lanes, loadHalf(tails.order[index].data())));
  return tails.size[index];
}

// Writes eight characters.
[[VARNIK_AVX2]] inline u32 putEight(__m256i codes, u8* out) {
  const __m256i two = _mm256_cmpgt_epi32(codes, lanesOf(0x7F)), three = _mm256_cmpgt_epi32(codes, lanesOf(0x7FF));
  const __m256i four = _mm256_cmpgt_epi32(codes, lanesOf(0xFFFF)), six = lanesOf(0x3F);
  __m256i lanes = _mm256_slli_epi32(_mm256_andnot_si256(_mm256_and_si256(two, lanesOf(0xFFC0)), codes), 24);
  lanes = _mm256_or_si256(lanes, _mm256_slli_epi32(_mm256_and_si256(_mm256_srli_epi32(codes, 6), six), 16));
  lanes = _mm256_or_si256(lanes, _mm256_slli_epi32(_mm256_and_si256(_mm256_srli_epi32(codes, 12), six), 8));
  lanes = _mm256_or_si256(lanes, _mm256_srli_epi32(codes, 18));
  // The marks of two bytes, and how they change for three and for four.
  const __m256i marks2 = _mm256_and_si256(two, lanesOf(0x80C00000)), to3 = _mm256_and_si256(three, lanesOf(0x0040E000));
  const __m256i marks = _mm256_xor_si256(_mm256_xor_si256(marks2, to3), _mm256_and_si256(four, lanesOf(0x000060F0)));
  lanes = _mm256_or_si256(lanes, marks);
  const __m256i odd = _mm256_xor_si256(_mm256_xor_si256(two, three), four);  // the length less one is odd
  const u32 bit0 = static_cast<u32>(_mm256_movemask_ps(_mm256_castsi256_ps(odd)));
  const u32 bit1 = static_cast<u32>(_mm256_movemask_ps(_mm256_castsi256_ps(three)));
  const u32 size = putLanes(_mm256_castsi256_si128(lanes), kTailsOfLengths, (bit0 & 0x0F) | (bit1 << 4 & 0xF0), out);
  return size + putLanes(_mm256_extracti128_si256(lanes, 1), kTailsOfLengths, bit0 >> 4 | (bit1 & 0xF0), out + size);
}

// Writes sixteen characters up to U+FFFF.
[[VARNIK_AVX2]] inline u32 putSixteen(__m256i units, u8* out) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i ascii = _mm256_cmpeq_epi16(_mm256_and_si256(units, unitsOf(0xFF80)), zero);
  const __m256i narrow = _mm256_cmpeq_epi16(_mm256_and_si256(units, unitsOf(0xF800)), zero);
  const __m256i low = _mm256_or_si256(unitsOf(0x3F), _mm256_and_si256(ascii, unitsOf(0x40)));
  const __m256i last = _mm256_or_si256(_mm256_and_si256(units, low), _mm256_andnot_si256(ascii, unitsOf(0x80)));
  const __m256i middleMark = _mm256_or_si256(unitsOf(0x80), _mm256_and_si256(narrow, unitsOf(0x40)));
  const __m256i middle = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(units, 6), unitsOf(0x3F)), middleMark);
  const __m256i lead = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(units, 4), unitsOf(0x0F00)), unitsOf(0xE000));
  const __m256i tail = _mm256_or_si256(middle, _mm256_slli_epi16(last, 8));
  const __m256i even = _mm256_unpacklo_epi16(lead, tail), odd = _mm256_unpackhi_epi16(lead, tail);
  const u32 kinds = bitsOf(_mm256_packs_epi16(ascii, narrow));  // 8 bits of each for the first half, then the second
  u32 at = putLanes(_mm256_castsi256_si128(even), kTailsOfKinds, (kinds & 0x0F) | (kinds >> 4 & 0xF0), out);
  at += putLanes(_mm256_castsi256_si128(odd), kTailsOfKinds, (kinds >> 4 & 0x0F) | (kinds >> 8 & 0xF0), out + at);
  at +=
      putLanes(_mm256_extracti128_si256(even, 1), kTailsOfKinds, (kinds >> 16 & 0x0F) | (kinds >> 20 & 0xF0), out + at);
  return at + putLanes(_mm256_extracti128_si256(odd, 1), kTailsOfKinds, (kinds >> 20 & 0x0F) | (kinds >> 24 & 0xF0),
                       out + at);
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
  return putEight(kept, out) - static_cast<u32>(__builtin_popcount(low));
}

// A block with surrogates in it. One that the end of the block parts from its other half is left for the next block.
[[VARNIK_AVX2]] inline Done putWithPairs(__m256i units, u8* out) {
  constexpr u32 kLast = 0xC0000000;  // two bits a unit
  const __m256i kind = _mm256_and_si256(units, unitsOf(0xFC00));
  const u32 highs = bitsOf(_mm256_cmpeq_epi16(kind, unitsOf(0xD800)));
  const u32 lows = bitsOf(_mm256_cmpeq_epi16(kind, unitsOf(0xDC00)));
  if (highs << 2 != lows) return {};
  if (highs == kLast) {  // nothing but that one: a zero in its place is one byte that does not count
    const __m256i others = _mm256_blend_epi16(units, _mm256_setzero_si256(), 0x80);
    const __m256i whole = _mm256_blend_epi32(units, others, 0xF0);
    return {kBlock - 2, putSixteen(whole, out) - 1};
  }
  const bool isCut = (highs & kLast) != 0;
  const __m256i next = without<2>(units);
  const u32 low = _pext_u32(lows, 0x55555555) | (isCut ? 0x8000u : 0);  // what is cut is dropped like a second unit
  const u32 size = putEightWithPairs(lowHalf(units), lowHalf(next), low & 0xFF, out);
  return {kBlock - (isCut ? 2 : 0), size + putEightWithPairs(highHalf(units), highHalf(next), low >> 8, out + size)};
}

[[VARNIK_AVX2]] inline bool haveSurrogates(__m256i units) {
  return bitsOf(_mm256_cmpeq_epi16(_mm256_and_si256(units, unitsOf(0xF800)), unitsOf(0xD800))) != 0;
}

[[VARNIK_AVX2]] inline Done putBlock16(__m256i units, u8* out) {
  if (haveSurrogates(units)) return putWithPairs(units, out);
  return {kBlock, putSixteen(units, out)};
}

[[VARNIK_AVX2]] inline Done putBlock32(__m256i codes, u8* out) {
  const __m256i last = lanesOf(0x10FFFF);
  const __m256i inRange = _mm256_cmpeq_epi32(_mm256_max_epu32(codes, last), last);
  const __m256i surrogate = _mm256_cmpeq_epi32(_mm256_and_si256(codes, lanesOf(0xFFFFF800)), lanesOf(0xD800));
  if (bitsOf(_mm256_andnot_si256(surrogate, inRange)) != 0xFFFFFFFF) return {};
  return {kBlock, putEight(codes, out)};
}

template <class From>
[[VARNIK_AVX2]] inline Done putBlock(__m256i units, u8* out) {
  if constexpr (kIsWide<From>) return putBlock32(units, out);
  return putBlock16(units, out);
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
[[VARNIK_AVX2]] inline void takeAscii(Stretch& s) {
  constexpr u32 kCharacters = kBlock / sizeof(typename From::Unit);
  while (s.left >= 4 * kBlock && s.room >= kRoom) {
    const __m256i k = loadUnits<From>(s.in), l = loadUnits<From>(s.in + 32);
    const __m256i m = loadUnits<From>(s.in + 64), n = loadUnits<From>(s.in + 96);
    if (!isAscii<From>(_mm256_or_si256(_mm256_or_si256(k, l), _mm256_or_si256(m, n)))) break;
    putAscii4<From>(k, l, m, n, s.out);
    s.advance(4 * kBlock, 4 * kCharacters);
  }
  while (s.left >= kBlock && s.room >= kRoom) {
    const __m256i units = loadUnits<From>(s.in);
    if (!isAscii<From>(units)) break;
    putAscii<From>(units, s.out);
    s.advance(kBlock, kCharacters);
  }
}

// Two blocks of UTF-32 as one of UTF-16, if no character in them is above U+FFFF.
[[VARNIK_AVX2]] inline bool narrowed(__m256i a, __m256i b, __m256i& units) {
  units = _mm256_permute4x64_epi64(_mm256_packus_epi32(a, b), 0xD8);
  return isClear(_mm256_or_si256(a, b), lanesOf(0xFFFF0000)) && !haveSurrogates(units);
}

// Takes blocks of characters below U+0800, up to some of ASCII in a row.
template <class From>
[[VARNIK_AVX2]] inline void takeNarrow(Stretch& s) {
  for (u32 ascii = 0; ascii < kAsciiRun && s.left >= kBlock && s.room >= kRoom;) {
    const __m256i units = loadUnits<From>(s.in);
    if (!isClear(units, unitsOf(0xF800))) break;
    const u32 size = putNarrow(units, s.out);
    ascii = size == kBlock / 2 ? ascii + 1 : 0;
    s.advance(kBlock, size);
  }
}

// Converts a block in which something is bad; there is room for whatever it becomes.
template <class From>
void takeBad(Stretch& s, UtfCursor& c) {
  s.save(c);
  convertTo<From, Utf8>(c, c.read + kBlock);
  s = Stretch(c);
}

// Take blocks of any characters, up to some in a row that another gear is for.
template <class From>
[[VARNIK_AVX2]] inline void takeOthers16(Stretch& s, UtfCursor& c) {
  for (u32 narrow = 0; narrow < kNarrowRun && s.left >= kBlock && s.room >= kRoom;) {
    const __m256i units = loadUnits<From>(s.in);
    narrow = isClear(units, unitsOf(0xF800)) ? narrow + 1 : 0;
    const Done done = putBlock16(units, s.out);
    s.advance(done.read, done.written);
    if (done.read == 0) takeBad<From>(s, c);
  }
}

template <class From>
[[VARNIK_AVX2]] inline void takeOthers32(Stretch& s, UtfCursor& c) {
  for (u32 ascii = 0; ascii < kAsciiRun && s.left >= 2 * kBlock && s.room >= kRoom;) {
    const __m256i first = loadUnits<From>(s.in), second = loadUnits<From>(s.in + kBlock);
    ascii = isAscii<From>(_mm256_or_si256(first, second)) ? ascii + 1 : 0;
    __m256i units;
    const Done done =
        narrowed(first, second, units) ? Done{2 * kBlock, putSixteen(units, s.out)} : putBlock32(first, s.out);
    s.advance(done.read, done.written);
    if (done.read == 0) takeBad<From>(s, c);
  }
}

// Takes the last units, of which there may be too few for a block.
template <class From>
[[VARNIK_AVX2]] inline void takeLast(Stretch& s) {
  constexpr u32 kUnit = sizeof(typename From::Unit);
  while (s.left >= kUnit && s.room >= kRoom) {
    const u32 size = s.left < kBlock ? s.left / kUnit * kUnit : kBlock;
    const __m256i block = size < kBlock ? loadUpTo32(s.in, size) : loadBlock(s.in);
    const Done done = putBlock<From>(unitsIn<From>(block), s.out);
    if (done.read == 0) return;
    s.advance(size < kBlock ? size : done.read, done.written - (kBlock - size) / kUnit);
  }
}

}  // namespace

template <class From>
[[VARNIK_AVX2]] void convertToUtf8Avx2(UtfCursor& c) {
  constexpr u32 kStep = kIsWide<From> ? 2 * kBlock : kBlock;
  Stretch s(c);
  while (s.left >= kStep && s.room >= kRoom) {
    takeAscii<From>(s);
    if constexpr (kIsWide<From>) {
      takeOthers32<From>(s, c);
    } else {
      takeNarrow<From>(s);
      takeOthers16<From>(s, c);
    }
  }
  takeLast<From>(s);
  s.save(c);
  convertTo<From, Utf8>(c, c.n);
}

template void convertToUtf8Avx2<Utf16Le>(UtfCursor&);
template void convertToUtf8Avx2<Utf16Be>(UtfCursor&);
template void convertToUtf8Avx2<Utf32Le>(UtfCursor&);
template void convertToUtf8Avx2<Utf32Be>(UtfCursor&);

}  // namespace vk_simd
#endif
