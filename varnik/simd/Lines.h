#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Returns true when a CR or LF stands outside a CR LF pair in data[0, n).
bool hasBareLineEnd(const u8* data, u32 n);
/// Returns the index behind the last CR or LF of data[from, to), or `from` when there is none. The bytes before `from`
/// must be readable, too; they do not count.
u32 behindLastLineEnd(const u8* data, u32 from, u32 to);
/// Returns true when every byte at an odd index of data[0, n) is zero.
bool oddBytesAreZero(const u8* data, u32 n);

bool hasBareLineEndScalar(const u8* data, u32 n);
u32 behindLastLineEndScalar(const u8* data, u32 from, u32 to);
bool oddBytesAreZeroScalar(const u8* data, u32 n);
#if VARNIK_HAVE_AVX2
bool hasBareLineEndAvx2(const u8* data, u32 n);
u32 behindLastLineEndAvx2(const u8* data, u32 from, u32 to);
bool oddBytesAreZeroAvx2(const u8* data, u32 n);
#endif
#if VARNIK_HAVE_AVX512
bool hasBareLineEndAvx512(const u8* data, u32 n);
#endif

}  // namespace vk_simd
