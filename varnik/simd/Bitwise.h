#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Sets out[i] to a[i] XOR b[i] for i below `n`. `out` may be `a` or `b` itself; areas that overlap otherwise give
/// undefined bytes.
void xorBytes(u8* out, const u8* a, const u8* b, u32 n);
/// Sets out[i] to a[i] AND b[i], likewise.
void andBytes(u8* out, const u8* a, const u8* b, u32 n);

void xorBytesScalar(u8* out, const u8* a, const u8* b, u32 n);
void andBytesScalar(u8* out, const u8* a, const u8* b, u32 n);
#if VARNIK_HAVE_AVX2
void xorBytesAvx2(u8* out, const u8* a, const u8* b, u32 n);
void andBytesAvx2(u8* out, const u8* a, const u8* b, u32 n);
#endif

}  // namespace vk_simd
