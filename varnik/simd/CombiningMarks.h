#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Composes, in place, each ASCII letter of the UTF-8 text data[0, n) with one of the seven combining marks of Western
/// European languages behind it where a precomposed letter exists; returns how many bytes the text has then. Marks are
/// U+0300 to U+0303, U+0308, U+030A, and U+0326 for the cedilla.
u32 composeMarks(u8* data, u32 n);

u32 composeMarksScalar(u8* data, u32 n);
#if VARNIK_HAVE_AVX2
u32 composeMarksAvx2(u8* data, u32 n);
#endif
#if VARNIK_HAVE_AVX512
u32 composeMarksAvx512(u8* data, u32 n);
#endif

}  // namespace vk_simd
