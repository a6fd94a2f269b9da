#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/ByteSet.h"

namespace vk_simd {

/// An encoding that writes a byte as itself or as a marker and two upper-case hex digits.
struct HexEscape {
  ByteSet clean;  // what stands for itself
  u8 marker;
};

/// How much of an input was encoded, and how many characters that took.
struct Escaped {
  u32 bytes, chars;
};

/// Encodes as many of the bytes from[0, n) to `out` as take no more than `room` characters. REQUIRES: 3 * `n`
/// characters and `kHexEscapeSlack` more may be written; areas that do not overlap.
Escaped escapeHex(const HexEscape& how, const u8* from, u32 n, u32 room, u8* out);
constexpr u32 kHexEscapeSlack = 32;

Escaped escapeHexScalar(const HexEscape& how, const u8* from, u32 n, u32 room, u8* out);
#if VARNIK_HAVE_AVX2
Escaped escapeHexAvx2(const HexEscape& how, const u8* from, u32 n, u32 room, u8* out);
#endif

}  // namespace vk_simd
