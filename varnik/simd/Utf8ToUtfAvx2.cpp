// UTF-8 to the other forms, and to itself with its bad parts replaced.
//
// A block of 32 bytes begins with a character. Its structure is checked on bit masks, one bit a byte: the continuation
// bytes must stand exactly where the lead bytes ask for them. Then a UTF-16 unit is computed at every byte as if a
// character began there, and the units at continuation bytes are dropped:
//
//   61  C3 A9  E2 82 AC  F0 9F 98 80
//   61  E9  .  AC20 . .  D83D DE00 . .     the low surrogate is computed at the second byte of four
//
// so that the time does not depend on what the characters are. A character that the end of the block cuts off begins
// the next block.
#include "varnik/simd/internal/UtfAvx2.h"

#if VARNIK_HAVE_AVX2
#include "varnik/simd/internal/ShuffleTables.h"

namespace vk_simd {
namespace {

constexpr u32 kBlock = 32;      // bytes of input
constexpr u32 kLookAhead = 36;  // what a block reads, and more

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
// 16 bytes, each in a lane of two.
[[VARNIK_AVX2]] inline __m256i loadWide(const u8* p) {
  return _mm256_cvtepu8_epi16(loadHalf(p));
}

struct Block {
  u32 continuations = 0;  // a bit a byte, like the next
  u32 leadsOf4 = 0;
  u32 size = 0;  // bytes up to the character that is cut off; 0 where something is bad
};

// Some lead bytes narrow the range of the second byte: E0 and F0 (overlong), ED (surrogates), F4 (above U+10FFFF).
[[VARNIK_AVX2]] inline u32 badSecondBytes(__m256i block, const u8* p) {
  const __m256i second = loadBlock(p + 1);
  const __m256i fromA0 = atLeast(second, 0xA0), from90 = atLeast(second, 0x90);
  const __m256i tooLow =
      _mm256_or_si256(_mm256_andnot_si256(fromA0, equal(block, 0xE0)), _mm256_andnot_si256(from90, equal(block, 0xF0)));
  const __m256i tooHigh =
      _mm256_or_si256(_mm256_and_si256(fromA0, equal(block, 0xED)), _mm256_and_si256(from90, equal(block, 0xF4)));
  return bitsOf(_mm256_or_si256(tooLow, tooHigh));
}

[[VARNIK_AVX2]] inline Block lookAt(__m256i block, const u8* p) {
  Block found;
  const u32 continuations = bitsOf(_mm256_cmpgt_epi8(bytes(0xC0), block));
  const u32 leads = bitsOf(block) & ~continuations;
  const __m256i from3 = atLeast(block, 0xE0);
  const u32 leadsOf3 = bitsOf(from3), leadsOf4 = leadsOf3 != 0 ? bitsOf(atLeast(block, 0xF0)) : 0;
  const u64 asked = u64{leads} << 1 | u64{leadsOf3} << 2 | u64{leadsOf4} << 3;
  const __m256i noLeads = _mm256_or_si256(equal(_mm256_and_si256(block, bytes(0xFE)), 0xC0), atLeast(block, 0xF5));
  if (static_cast<u32>(asked) != continuations || bitsOf(noLeads) != 0) return found;
  const u32 size = asked >> 32 != 0 ? 31 - static_cast<u32>(__builtin_clz(leads)) : kBlock;
  if (leadsOf3 != 0 && (badSecondBytes(block, p) & lowBits(size)) != 0) return found;
  return {continuations, leadsOf4, size};
}

// The units at 16 bytes from `p` on. Each lane sees its byte and the two behind it.
[[VARNIK_AVX2]] inline __m256i unitsAt(const u8* p, bool any4) {
  const __m256i a = loadWide(p), b = loadWide(p + 1), c = loadWide(p + 2), six = units(0x3F);
  const __m256i low = _mm256_and_si256(b, six), lower = _mm256_and_si256(c, six);
  const __m256i two = _mm256_or_si256(_mm256_slli_epi16(_mm256_and_si256(a, units(0x1F)), 6), low);
  const __m256i three = _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(a, 12), _mm256_slli_epi16(low, 6)), lower);
  __m256i unit = _mm256_blendv_epi8(a, two, _mm256_cmpgt_epi16(a, units(0xBF)));
  unit = _mm256_blendv_epi8(unit, three, _mm256_cmpgt_epi16(a, units(0xDF)));
  if (!any4) return unit;
  // D7C0 is D800 less the 0x10000 that the surrogates leave out.
  const __m256i bits =
      _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(_mm256_and_si256(a, units(7)), 8), _mm256_slli_epi16(low, 2)),
                      _mm256_srli_epi16(lower, 4));
  return _mm256_blendv_epi8(unit, _mm256_add_epi16(bits, units(0xD7C0)), _mm256_cmpgt_epi16(a, units(0xEF)));
}

// The low surrogates at the second bytes of four, whose lead bytes stand one byte before `p`.
[[VARNIK_AVX2]] inline __m256i withLowSurrogates(__m256i unit, const u8* p, __m256i before) {
  const __m256i high = _mm256_and_si256(loadWide(p + 1), units(0x0F)),
                low = _mm256_and_si256(loadWide(p + 2), units(0x3F));
  const __m256i surrogate = _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(high, 6), low), units(0xDC00));
  return _mm256_blendv_epi8(unit, surrogate, _mm256_cmpgt_epi16(before, units(0xEF)));
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
[[VARNIK_AVX2]] inline u32 putUnits(const u8* p, const Block& found, u8* out) {
  const bool any4 = found.leadsOf4 != 0;
  __m256i first = unitsAt(p, any4), second = unitsAt(p + 16, any4);
  if (any4) {
    first = withLowSurrogates(first, p, _mm256_cvtepu8_epi16(_mm_slli_si128(loadHalf(p), 1)));
    second = withLowSurrogates(second, p + 16, _mm256_cvtepu8_epi16(loadHalf(p + 15)));
  }
  first = inOrder<To>(first);
  second = inOrder<To>(second);
  const u32 kept = (~found.continuations | found.leadsOf4 << 1) & lowBits(found.size);
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

constexpr u32 roomOf(u32 unit) {
  return kBlock * unit;
}

// Converts one block with more than ASCII in it; false when the scalar code must.
template <class To>
[[VARNIK_AVX2]] inline bool putBlock(UtfCursor& c, __m256i block, const u8* p) {
  if constexpr (sizeof(typename To::Unit) == 4) return false;
  const Block found = lookAt(block, p);
  if (found.size == 0) return false;
  u8* const out = c.out + c.written;
  if constexpr (sizeof(typename To::Unit) == 1) {
    storeBlock(out, block);
    c.written += found.size;
  } else {
    c.written += putUnits<To>(p, found, out);
  }
  c.read += found.size;
  return true;
}

// What is too short for a block that looks ahead.
template <class To>
[[VARNIK_AVX2]] inline void putTail(UtfCursor& c) {
  constexpr u32 kUnit = sizeof(typename To::Unit), kRoom = 2 * roomOf(kUnit);
  const u32 rest = c.left();
  if (rest == 0 || rest >= kLookAhead || c.roomLeft() < kRoom) return;
  alignas(32) u8 padded[2 * kBlock + kLookAhead] = {};
  __builtin_memcpy(padded, c.in + c.read, rest);
  UtfCursor tail{padded, sizeof padded, c.out + c.written, kRoom};
  while (tail.read < rest) {
    const __m256i block = loadBlock(padded + tail.read);
    if (bitsOf(block) == 0) {
      putAscii<To>(block, tail.out + tail.written);
      tail.read += kBlock;
      tail.written += roomOf(kUnit);
    } else if (!putBlock<To>(tail, block, padded + tail.read)) {
      return;
    }
  }
  c.read += rest;
  c.written += tail.written - (tail.read - rest) * kUnit;
}

}  // namespace

template <class To>
[[VARNIK_AVX2]] void convertFromUtf8Avx2(UtfCursor& c) {
  constexpr u32 kUnit = sizeof(typename To::Unit);
  while (c.left() >= kLookAhead && c.roomLeft() >= roomOf(kUnit)) {
    const u8* const p = c.in + c.read;
    const __m256i block = loadBlock(p);
    if (bitsOf(block) == 0) {
      putAscii<To>(block, c.out + c.written);
      c.read += kBlock;
      c.written += roomOf(kUnit);
    } else if (!putBlock<To>(c, block, p) && !convertTo<Utf8, To>(c, c.read + kBlock)) {
      return;
    }
  }
  putTail<To>(c);
  convertTo<Utf8, To>(c, c.n);
}

template void convertFromUtf8Avx2<Utf8>(UtfCursor&);
template void convertFromUtf8Avx2<Utf16Le>(UtfCursor&);
template void convertFromUtf8Avx2<Utf16Be>(UtfCursor&);
template void convertFromUtf8Avx2<Utf32Le>(UtfCursor&);
template void convertFromUtf8Avx2<Utf32Be>(UtfCursor&);

}  // namespace vk_simd
#endif
