// Encoded text without its white space.
#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Blank, tab, LF, VT, FF, CR.
constexpr bool isWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// `gatherText` may write this many characters behind those that it counts.
constexpr u32 kGatherSlack = 32;

/// Copies the characters of in[0, n) that are no white space to `out` and sets `gathered` to their count. Stops before
/// a `=` or `&`, and when there are `most`. Returns how many characters it has read. REQUIRES: room for `most` +
/// `kGatherSlack` characters.
u32 gatherText(const char* in, u32 n, char* out, u32 most, u32& gathered);

u32 gatherTextScalar(const char* in, u32 n, char* out, u32 most, u32& gathered);
#if VARNIK_HAVE_AVX2
u32 gatherTextAvx2(const char* in, u32 n, char* out, u32 most, u32& gathered);
#endif

}  // namespace vk_simd
