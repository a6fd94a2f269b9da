#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Exchanges the bytes of every pair of data[0, n). REQUIRES: `n` is a multiple of 2.
void swapPairs(u8* data, u32 n);
/// Reverses every group of four bytes of data[0, n). REQUIRES: `n` is a multiple of 4.
void swapFours(u8* data, u32 n);

void swapPairsScalar(u8* data, u32 n);
void swapFoursScalar(u8* data, u32 n);
#if VARNIK_HAVE_AVX2
void swapPairsAvx2(u8* data, u32 n);
void swapFoursAvx2(u8* data, u32 n);
#endif

}  // namespace vk_simd
