// Hex digits (RFC 4648 section 8). Input and output do not overlap.
#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Writes two digits a byte, 2 * `n` characters.
void hexEncode(const u8* in, u32 n, bool lower, char* out);
/// The same past the caches, which are left to what is in them: for texts of many MiB.
void hexEncodeStream(const u8* in, u32 n, bool lower, char* out);
/// The same with `:` between bytes, 3 * `n` - 1 characters. REQUIRES: `n` > 0.
void hexEncodeColons(const u8* in, u32 n, bool lower, char* out);

/// Writes the bytes of the pairs of digits, of either case, at the front of in[0, n); returns how many characters that
/// were: it stops before the first pair that holds anything else. What lies behind those bytes, as far as all `n`
/// characters would reach, is undefined then.
u32 hexDecode(const char* in, u32 n, u8* out);

void hexEncodeScalar(const u8* in, u32 n, bool lower, char* out);
void hexEncodeColonsScalar(const u8* in, u32 n, bool lower, char* out);
u32 hexDecodeScalar(const char* in, u32 n, u8* out);
#if VARNIK_HAVE_AVX2
void hexEncodeAvx2(const u8* in, u32 n, bool lower, char* out);
void hexEncodeStreamAvx2(const u8* in, u32 n, bool lower, char* out);
void hexEncodeColonsAvx2(const u8* in, u32 n, bool lower, char* out);
u32 hexDecodeAvx2(const char* in, u32 n, u8* out);
#elif VARNIK_HAVE_NEON
void hexEncodeNeon(const u8* in, u32 n, bool lower, char* out);
u32 hexDecodeNeon(const char* in, u32 n, u8* out);
#endif
#if VARNIK_HAVE_AVX512
u32 hexDecodeAvx512(const char* in, u32 n, u8* out);
#endif

}  // namespace vk_simd
