#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Turns every byte `from` of data[0, n) into `to`.
void replaceByte(u8* data, u32 n, u8 from, u8 to);

void replaceByteScalar(u8* data, u32 n, u8 from, u8 to);
#if VARNIK_HAVE_AVX2
void replaceByteAvx2(u8* data, u32 n, u8 from, u8 to);
#endif

}  // namespace vk_simd
