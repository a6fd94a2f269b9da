#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Returns the index of the first occurrence of pattern[0, m) in data[0, n), or `n` when there is none. No table, no
/// allocation. REQUIRES: 1 <= m <= n.
///
/// The search begins as the C library's search for the pattern's first byte, which nothing outruns while that byte is
/// rare. Once false candidates come too often it looks at two bytes of the pattern at 64 places at once. Which two
/// follows the data: the byte at which the last false candidate failed takes the place of the older one, so a pattern
/// whose rare byte stands anywhere finds it, and a run of one letter has no candidates.
u32 findBytes(const u8* data, u32 n, const u8* pattern, u32 m);
/// Returns the index of the first byte at which a[0, n) and b[0, n) differ, or `n` when they are equal.
u32 mismatch(const u8* a, const u8* b, u32 n);

u32 findBytesScalar(const u8* data, u32 n, const u8* pattern, u32 m);
u32 mismatchScalar(const u8* a, const u8* b, u32 n);
#if VARNIK_HAVE_AVX2
u32 findBytesAvx2(const u8* data, u32 n, const u8* pattern, u32 m);
u32 mismatchAvx2(const u8* a, const u8* b, u32 n);
#endif

}  // namespace vk_simd
