#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

// Each copies those of the `n` bytes at `from` that stay to `out`, in their order, and returns how many they are.
// REQUIRES: `out` has room for `n` bytes, and lies at or before `from` where the areas overlap; what is behind the
// bytes that stay, up to `n`, is undefined afterwards.

/// All but the bytes equal to `value` stay.
u32 dropByte(u8* out, const u8* from, u32 n, u8 value);
/// The bytes 0x01 to 0x7F stay.
u32 keepAscii(u8* out, const u8* from, u32 n);
/// The bytes at even indexes stay.
u32 keepEven(u8* out, const u8* from, u32 n);

u32 dropByteScalar(u8* out, const u8* from, u32 n, u8 value);
u32 keepAsciiScalar(u8* out, const u8* from, u32 n);
u32 keepEvenScalar(u8* out, const u8* from, u32 n);
#if VARNIK_HAVE_AVX2
u32 dropByteAvx2(u8* out, const u8* from, u32 n, u8 value);
u32 keepAsciiAvx2(u8* out, const u8* from, u32 n);
u32 keepEvenAvx2(u8* out, const u8* from, u32 n);
#endif
#if VARNIK_HAVE_AVX512
u32 dropByteAvx512(u8* out, const u8* from, u32 n, u8 value);
u32 keepAsciiAvx512(u8* out, const u8* from, u32 n);
#endif

}  // namespace vk_simd
