#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Writes the `n` bytes at `from` to `out`, last byte first. REQUIRES: the areas do not overlap.
void reverseCopy(u8* out, const u8* from, u32 n);
/// Reverses the order of data[0, n).
void reverseInPlace(u8* data, u32 n);

void reverseCopyScalar(u8* out, const u8* from, u32 n);
void reverseInPlaceScalar(u8* data, u32 n);
#if VARNIK_HAVE_AVX2
void reverseCopyAvx2(u8* out, const u8* from, u32 n);
void reverseInPlaceAvx2(u8* data, u32 n);
#endif

}  // namespace vk_simd
