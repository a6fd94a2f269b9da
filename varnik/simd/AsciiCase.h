#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Maps the letters of the UTF-16 units (host order, any address) at the front of `n` to upper or lower case, block of
/// 16 units after block, up to the first block that is not all ASCII or not whole. Returns how many units that are.
u32 upperAsciiBlocks(u8* units, u32 n);
u32 lowerAsciiBlocks(u8* units, u32 n);

u32 upperAsciiBlocksScalar(u8* units, u32 n);
u32 lowerAsciiBlocksScalar(u8* units, u32 n);
#if VARNIK_HAVE_AVX2
u32 upperAsciiBlocksAvx2(u8* units, u32 n);
u32 lowerAsciiBlocksAvx2(u8* units, u32 n);
#endif

}  // namespace vk_simd
