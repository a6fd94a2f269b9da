// base32 (RFC 4648 section 6). Input and output do not overlap.
#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Writes the `n` bytes as groups of eight characters, padded with `=`.
void base32Encode(const u8* in, u32 n, char* out);

/// Writes the bytes of the groups of eight characters at the front of in[0, n); returns how many characters that were:
/// it stops before the first group that holds anything outside the alphabet. What lies behind those bytes, as far as
/// all `n` characters would reach, is undefined then.
u32 base32Decode(const char* in, u32 n, u8* out);

void base32EncodeScalar(const u8* in, u32 n, char* out);
u32 base32DecodeScalar(const char* in, u32 n, u8* out);
#if VARNIK_HAVE_AVX2
void base32EncodeAvx2(const u8* in, u32 n, char* out);
u32 base32DecodeAvx2(const char* in, u32 n, u8* out);
#endif

}  // namespace vk_simd
