#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Returns how many bytes at the front of data[0, n) are below 0x80.
u32 asciiRun(const u8* data, u32 n);

u32 asciiRunScalar(const u8* data, u32 n);
#if VARNIK_HAVE_AVX2
u32 asciiRunAvx2(const u8* data, u32 n);
#elif VARNIK_HAVE_NEON
u32 asciiRunNeon(const u8* data, u32 n);
#endif
#if VARNIK_HAVE_AVX512
u32 asciiRunAvx512(const u8* data, u32 n);
#endif

}  // namespace vk_simd
