#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Maps the UTF-16 units (host order, any address) at the front of `n` to upper or lower case, block of 16 units after
/// block, up to the first block that is not whole or has a unit whose mapping the kernel does not know. It knows
/// Latin-1, modern Greek, the Cyrillic of U+0400 to U+045F, punctuation and currency, and the letters without case of
/// East Asia and the surrogates. Returns how many units it has mapped.
u32 upperBlocks(u8* units, u32 n);
u32 lowerBlocks(u8* units, u32 n);

u32 upperBlocksScalar(u8* units, u32 n);
u32 lowerBlocksScalar(u8* units, u32 n);
#if VARNIK_HAVE_AVX2
u32 upperBlocksAvx2(u8* units, u32 n);
u32 lowerBlocksAvx2(u8* units, u32 n);
#endif
#if VARNIK_HAVE_AVX512
u32 upperBlocksAvx512(u8* units, u32 n);
u32 lowerBlocksAvx512(u8* units, u32 n);
#endif

}  // namespace vk_simd
