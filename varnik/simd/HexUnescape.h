#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Writes text[0, n) to `out` with each `marker` and two hex digits of either case behind it turned into the byte that
/// they stand for, and returns the number of bytes. A marker without two digits stays as it is.
///
/// `readable`, `n` or more, is how many characters can be read: a short piece of a longer text goes faster. REQUIRES:
/// the character behind the piece is no hex digit; room for `readable` bytes, all of which may be written; areas that
/// do not overlap; a marker that is no hex digit.
u32 unescapeHex(u8 marker, const u8* text, u32 n, u32 readable, u8* out);

constexpr u32 kHexUnescapeSlack = 32;

u32 unescapeHexScalar(u8 marker, const u8* text, u32 n, u32 readable, u8* out);
#if VARNIK_HAVE_AVX2
u32 unescapeHexAvx2(u8 marker, const u8* text, u32 n, u32 readable, u8* out);
#endif
#if VARNIK_HAVE_AVX512
u32 unescapeHexAvx512(u8 marker, const u8* text, u32 n, u32 readable, u8* out);
#endif

/// Returns the value of a hex digit, 0xFF when the character is none.
constexpr u8 hexValue(u8 c) {
  if (c >= '0' && c <= '9') return static_cast<u8>(c - '0');
  const u32 letter = (c | 0x20U) - 'a';
  return letter < 6 ? static_cast<u8>(letter + 10) : u8{0xFF};
}

}  // namespace vk_simd
