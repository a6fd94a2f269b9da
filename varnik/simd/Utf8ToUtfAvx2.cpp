// UTF-8 to the other forms, and to itself with its bad parts replaced.
//
// A block of 32 bytes begins with a character. Its structure is checked on bit masks, one bit a byte: the continuation
// bytes must stand exactly where the lead bytes ask for them. Then a UTF-16 unit is computed at every byte as if a
// character began there, and the units at continuation bytes are dropped:
//
//   61  C3 A9  E2 82 AC  F0 9F 98 80
//   61  E9  .  AC20 . .  D83D DE00 . .     the low surrogate is computed at the second byte of four
//
// so that the time does not depend on what the characters are.
#include "varnik/simd/internal/UtfAvx2.h"

#if VARNIK_HAVE_AVX2
#include "varnik/simd/AsciiRun.h"
#include "varnik/simd/internal/ShuffleTables.h"

namespace vk_simd {
namespace {

constexpr u32 kBlock = 32;  // bytes of input

constexpr u32 lowBits(u32 n) {
  return n == 32 ? 0xFFFFFFFF : (1u << n) - 1;
}

[[VARNIK_AVX2]] inline __m256i bytes(u32 value) {
  return _mm256_set1_epi8(static_cast<s8>(value));
}
[[VARNIK_AVX2]] inline __m256i units(u32 value) {
  return _mm256_set1_epi16(static_cast<s16>(value));
}
[[VARNIK_AVX2]] inline __m256i atLeast(__m256i block, u32 value) {
  return _mm256_cmpeq_epi8(_mm256_max_epu8(block, bytes(value)), block);
}

[[VARNIK_AVX2]] inline __m256i equal(__m256i block, u32 value) {
  return _mm256_cmpeq_epi8(block, bytes(value));
}

struct Block {
  u32 continuations = 0;  // a bit a byte, like the next
  u32 leadsOf4 = 0;
  u32 size = 0;  // bytes up to the character that is cut off; 0 where something is bad
};

// A bit for each byte of a block at which a UTF-16 unit stays.
constexpr u32 keptUnits(const Block& found) {
  return (~found.continuations | found.leadsOf4 << 1) & lowBits(found.size);
}

// Some lead bytes narrow the range of the second byte: E0 and F0 (overlong), ED (surrogates), F4 (above U+10FFFF).
[[VARNIK_AVX2]] inline u32 badSecondBytes(__m256i block) {
  const __m256i second = without<1>(block);
  const __m256i fromA0 = atLeast(second, 0xA0), from90 = atLeast(second, 0x90);
  const __m256i tooLow =
      _mm256_or_si256(_mm256_andnot_si256(fromA0, equal(block, 0xE0)), _mm256_andnot_si256(from90, equal(block, 0xF0)));
  const __m256i tooHigh =
      _mm256_or_si256(_mm256_and_si256(fromA0, equal(block, 0xED)), _mm256_and_si256(from90, equal(block, 0xF4)));
  return bitsOf(_mm256_or_si256(tooLow, tooHigh));
}

[[VARNIK_AVX2]] inline Block lookAt(__m256i block) {
  Block found;
  const u32 continuations = bitsOf(_mm256_cmpgt_epi8(bytes(0xC0), block));
  const u32 leads = bitsOf(block) & ~continuations;
  const __m256i from3 = atLeast(block, 0xE0);
  const u32 leadsOf3 = bitsOf(from3), leadsOf4 = leadsOf3 != 0 ? bitsOf(atLeast(block, 0xF0)) : 0;
  const u64 asked = u64{leads} << 1 | u64{leadsOf3} << 2 | u64{leadsOf4} << 3;
  const __m256i noLeads = _mm256_or_si256(equal(_mm256_and_si256(block, bytes(0xFE)), 0xC0), atLeast(block, 0xF5));
  if (static_cast<u32>(asked) != continuations || bitsOf(noLeads) != 0) return found;
  const u32 size = asked >> 32 != 0 ? 31 - static_cast<u32>(__builtin_clz(leads)) : kBlock;
  if (leadsOf3 != 0 && (badSecondBytes(block) & lowBits(size)) != 0) return found;
  return {continuations, leadsOf4, size};
}

// 16 bytes of a block, each with the byte in front of it and the two behind it, as lanes of two bytes.
struct Window {
  __m256i before, a, b, c;
};

[[VARNIK_AVX2]] inline Window firstWindow(__m128i low, __m128i high) {
  return {_mm256_cvtepu8_epi16(_mm_slli_si128(low, 1)), _mm256_cvtepu8_epi16(low),
          _mm256_cvtepu8_epi16(_mm_alignr_epi8(high, low, 1)), _mm256_cvtepu8_epi16(_mm_alignr_epi8(high, low, 2))};
}
[[VARNIK_AVX2]] inline Window secondWindow(__m128i low, __m128i high) {
  return {_mm256_cvtepu8_epi16(_mm_alignr_epi8(high, low, 15)), _mm256_cvtepu8_epi16(high),
          _mm256_cvtepu8_epi16(_mm_srli_si128(high, 1)), _mm256_cvtepu8_epi16(_mm_srli_si128(high, 2))};
}

[[VARNIK_AVX2]] inline __m256i shiftedLeft(__m256i lanes, u32 bits, int by) {
  return _mm256_slli_epi16(_mm256_and_si256(lanes, units(bits)), by);
}

// The units of characters of four bytes: a high surrogate at the first byte (D7C0 is D800 less the 0x10000 that the
// surrogates leave out), a low one at the second.
[[VARNIK_AVX2]] inline __m256i withSurrogates(__m256i unit, const Window& w) {
  const __m256i last = _mm256_and_si256(w.c, units(0x3F));
  const __m256i bits = _mm256_or_si256(shiftedLeft(w.a, 7, 8), shiftedLeft(w.b, 0x3F, 2));
  const __m256i high = _mm256_add_epi16(_mm256_or_si256(bits, _mm256_srli_epi16(last, 4)), units(0xD7C0));
  const __m256i low = _mm256_or_si256(_mm256_or_si256(shiftedLeft(w.b, 0x0F, 6), last), units(0xDC00));
  unit = _mm256_blendv_epi8(unit, high, _mm256_cmpgt_epi16(w.a, units(0xEF)));
  return _mm256_blendv_epi8(unit, low, _mm256_cmpgt_epi16(w.before, units(0xEF)));
}

[[VARNIK_AVX2]] inline __m256i unitsAt(const Window& w) {
  const __m256i last = _mm256_and_si256(w.b, units(0x3F));
  const __m256i two = _mm256_or_si256(shiftedLeft(w.a, 0x1F, 6), last);
  const __m256i front = _mm256_or_si256(_mm256_slli_epi16(w.a, 12), _mm256_slli_epi16(last, 6));
  const __m256i three = _mm256_or_si256(front, _mm256_and_si256(w.c, units(0x3F)));
  const __m256i unit = _mm256_blendv_epi8(w.a, two, _mm256_cmpgt_epi16(w.a, units(0xBF)));
  return _mm256_blendv_epi8(unit, three, _mm256_cmpgt_epi16(w.a, units(0xDF)));
}

template <class To>
[[VARNIK_AVX2]] inline __m256i inOrder(__m256i unit) {
  if constexpr (To::kEndian == std::endian::little) return unit;
  return _mm256_or_si256(_mm256_slli_epi16(unit, 8), _mm256_srli_epi16(unit, 8));
}

// Writes the units whose bits are set and returns their bytes.
[[VARNIK_AVX2]] inline u32 putKept(__m128i eight, u32 kept, u8* out) {
  storeHalf(out, _mm_shuffle_epi8(eight, loadHalf(kKeptPairs[kept].data())));
  return 2 * static_cast<u32>(__builtin_popcount(kept));
}

template <class To>
[[VARNIK_AVX2]] inline u32 putUnits(__m256i block, const Block& found, u8* out) {
  const __m128i low = _mm256_castsi256_si128(block), high = _mm256_extracti128_si256(block, 1);
  const Window one = firstWindow(low, high), two = secondWindow(low, high);
  __m256i first = unitsAt(one), second = unitsAt(two);
  if (found.leadsOf4 != 0) {
    first = withSurrogates(first, one);
    second = withSurrogates(second, two);
  }
  first = inOrder<To>(first);
  second = inOrder<To>(second);
  const u32 kept = keptUnits(found);
  u32 at = putKept(_mm256_castsi256_si128(first), kept & 0xFF, out);
  at += putKept(_mm256_extracti128_si256(first, 1), kept >> 8 & 0xFF, out + at);
  at += putKept(_mm256_castsi256_si128(second), kept >> 16 & 0xFF, out + at);
  return at + putKept(_mm256_extracti128_si256(second, 1), kept >> 24, out + at);
}

template <class To>
[[VARNIK_AVX2]] inline void putAscii(__m256i block, u8* out) {
  const __m128i low = _mm256_castsi256_si128(block), high = _mm256_extracti128_si256(block, 1);
  if constexpr (sizeof(typename To::Unit) == 1) {
    storeBlock(out, block);
  } else if constexpr (sizeof(typename To::Unit) == 2) {
    storeBlock(out, inOrder<To>(_mm256_cvtepu8_epi16(low)));
    storeBlock(out + 32, inOrder<To>(_mm256_cvtepu8_epi16(high)));
  } else {
    const __m128i quarters[4] = {low, _mm_srli_si128(low, 8), high, _mm_srli_si128(high, 8)};
    for (u32 i = 0; i < 4; ++i) {
      const __m256i codes = _mm256_cvtepu8_epi32(quarters[i]);
      storeBlock(out + 32 * i, To::kEndian == std::endian::little ? codes : _mm256_slli_epi32(codes, 24));
    }
  }
}

template <class To>
constexpr u32 kRoom = kBlock * sizeof(typename To::Unit);  // what a block may write

struct Done {
  u32 read = 0, written = 0;  // read is 0 where the scalar code must do it
};

// Converts a block of any characters.
template <class To>
[[VARNIK_AVX2]] inline Done putBlock(__m256i block, u8* out) {
  if constexpr (sizeof(typename To::Unit) == 4) {
    if (bitsOf(block) != 0) return {};
    putAscii<To>(block, out);
    return {kBlock, kRoom<To>};
  } else {
    const Block found = lookAt(block);
    if (found.size == 0) return {};
    if constexpr (sizeof(typename To::Unit) == 2) return {found.size, putUnits<To>(block, found, out)};
    storeBlock(out, block);
    return {found.size, found.size};
  }
}

// Takes the blocks of ASCII at the front.
template <class To>
[[VARNIK_AVX2]] inline void takeAscii(Stretch& s) {
  while (s.left >= 2 * kBlock && s.room >= 2 * kRoom<To>) {
    const __m256i one = loadBlock(s.in), two = loadBlock(s.in + kBlock);
    if (bitsOf(_mm256_or_si256(one, two)) != 0) break;
    putAscii<To>(one, s.out);
    putAscii<To>(two, s.out + kRoom<To>);
    s.advance(2 * kBlock, 2 * kRoom<To>);
  }
  while (s.left >= kBlock && s.room >= kRoom<To>) {
    const __m256i block = loadBlock(s.in);
    if (bitsOf(block) != 0) break;
    putAscii<To>(block, s.out);
    s.advance(kBlock, kRoom<To>);
  }
}

// Converts a block in which something is bad; false when a character does not fit.
template <class To>
bool takeBad(Stretch& s, UtfCursor& c) {
  s.save(c);
  const bool fits = convertTo<Utf8, To>(c, c.read + kBlock);
  s = Stretch(c);
  return fits;
}

// Takes blocks of any characters, up to some of ASCII in a row. False when a character does not fit.
template <class To>
[[VARNIK_AVX2]] inline bool takeOthers(Stretch& s, UtfCursor& c) {
  bool fits = true;
  for (u32 ascii = 0; fits && ascii < kAsciiRun && s.left >= kBlock && s.room >= kRoom<To>;) {
    const __m256i block = loadBlock(s.in);
    ascii = bitsOf(block) == 0 ? ascii + 1 : 0;
    const Done done = putBlock<To>(block, s.out);
    s.advance(done.read, done.written);
    if (done.read == 0) fits = takeBad<To>(s, c);
  }
  return fits;
}

// Takes the last bytes, fewer than a block has.
template <class To>
[[VARNIK_AVX2]] inline void takeLast(Stretch& s) {
  if (s.left == 0 || s.left >= kBlock || s.room < kRoom<To>) return;
  const Done done = putBlock<To>(loadUpTo32(s.in, s.left), s.out);
  if (done.read == 0) return;
  s.advance(s.left, done.written - (kBlock - s.left) * static_cast<u32>(sizeof(typename To::Unit)));
}

// How many UTF-16 units a text becomes, its bad parts one each.
[[VARNIK_AVX2]] u64 countUnits(const u8* data, u32 n) {
  u32 i = asciiRunAvx2(data, n);
  u64 count = i;
  while (n - i >= kBlock) {
    const Block found = lookAt(loadBlock(data + i));
    count += static_cast<u32>(__builtin_popcount(keptUnits(found)));
    i += found.size;
    if (found.size != 0) continue;
    for (const u32 end = i + kBlock; i < end;) {
      u32 code;
      i += Utf8::decode(data + i, n - i, code);
      count += code != kBadPart && code >= 0x10000 ? 2 : 1;
    }
  }
  return count + utfLengthScalar(Utf::k8, Utf::k16Le, data + i, n - i) / 2;
}

}  // namespace

[[VARNIK_AVX2]] u64 utfLengthAvx2(Utf from, Utf to, const u8* data, u32 n) {
  const bool isCounted = from == Utf::k8 && (to == Utf::k16Le || to == Utf::k16Be);
  return isCounted ? 2 * countUnits(data, n) : utfLengthScalar(from, to, data, n);
}

template <class To>
[[VARNIK_AVX2]] void convertFromUtf8Avx2(UtfCursor& c) {
  Stretch s(c);
  bool fits = true;
  while (fits && s.left >= kBlock && s.room >= kRoom<To>) {
    takeAscii<To>(s);
    fits = takeOthers<To>(s, c);
  }
  takeLast<To>(s);
  s.save(c);
  convertTo<Utf8, To>(c, c.n);
}

template void convertFromUtf8Avx2<Utf8>(UtfCursor&);
template void convertFromUtf8Avx2<Utf16Le>(UtfCursor&);
template void convertFromUtf8Avx2<Utf16Be>(UtfCursor&);
template void convertFromUtf8Avx2<Utf32Le>(UtfCursor&);
template void convertFromUtf8Avx2<Utf32Be>(UtfCursor&);

}  // namespace vk_simd
#endif
