#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Maps the UTF-16 units (host order, any address) at the front of `n` to upper or lower case, block of 16 units after
/// block, up to the first block that is not whole or has a unit whose mapping the kernel does not know: it knows those
/// of ASCII, Latin-1, Greek, Cyrillic, Chinese, Japanese, Korean and surrogates, nearly all of them. Returns how many
/// units that are.
u32 upperBlocks(u8* units, u32 n);
u32 lowerBlocks(u8* units, u32 n);

u32 upperBlocksScalar(u8* units, u32 n);
u32 lowerBlocksScalar(u8* units, u32 n);
#if VARNIK_HAVE_AVX2
u32 upperBlocksAvx2(u8* units, u32 n);
u32 lowerBlocksAvx2(u8* units, u32 n);
#endif

}  // namespace vk_simd
