// base64 (RFC 4648 sections 4 and 5). Input and output do not overlap.
#pragma once

#include <string_view>

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Writes the `n` bytes as groups of four characters, padded with `=`; `url` takes `-` and `_` for 62 and 63.
void base64Encode(const u8* in, u32 n, bool url, char* out);
/// The same past the caches, which are left to what is in them: for texts of many MiB.
void base64EncodeStream(const u8* in, u32 n, bool url, char* out);

/// What ends a line: up to 8 characters.
struct LineEnd {
  char text[8];
  u32 length;
};

/// Writes lines of `lineBytes` bytes each, the last one of what is left, each with its end. REQUIRES: a `lineBytes`
/// that is a multiple of 3.
void base64EncodeLines(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out);

/// Writes the bytes of the groups of four characters at the front of in[0, n); returns how many characters that were:
/// it stops before the first group that holds anything outside the alphabet. `url` takes `-` and `_` beside `+` and
/// `/`. What lies behind those bytes, as far as all `n` characters would reach, is undefined then.
u32 base64Decode(const char* in, u32 n, bool url, u8* out);

/// Writes the bytes of the lines at the front of in[0, n) that are `lineChars` characters of the standard alphabet and
/// then `end`; returns how many lines that were. What lies behind their bytes, as far as all `n` characters would
/// reach, is undefined then. REQUIRES: a `lineChars` that is a multiple of 4, above 0; an `end` of 1 or 2 characters.
u32 base64DecodeLines(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out);

void base64EncodeScalar(const u8* in, u32 n, bool url, char* out);
void base64EncodeLinesScalar(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out);
u32 base64DecodeScalar(const char* in, u32 n, bool url, u8* out);
u32 base64DecodeLinesScalar(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out);
#if VARNIK_HAVE_AVX2
void base64EncodeAvx2(const u8* in, u32 n, bool url, char* out);
void base64EncodeStreamAvx2(const u8* in, u32 n, bool url, char* out);
void base64EncodeLinesAvx2(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out);
u32 base64DecodeAvx2(const char* in, u32 n, bool url, u8* out);
u32 base64DecodeLinesAvx2(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out);
#elif VARNIK_HAVE_NEON
void base64EncodeNeon(const u8* in, u32 n, bool url, char* out);
void base64EncodeLinesNeon(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out);
u32 base64DecodeNeon(const char* in, u32 n, bool url, u8* out);
u32 base64DecodeLinesNeon(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out);
#endif
#if VARNIK_HAVE_AVX512
void base64EncodeAvx512(const u8* in, u32 n, bool url, char* out);
void base64EncodeStreamAvx512(const u8* in, u32 n, bool url, char* out);
void base64EncodeLinesAvx512(const u8* in, u32 n, u32 lineBytes, const LineEnd& end, char* out);
u32 base64DecodeAvx512(const char* in, u32 n, bool url, u8* out);
u32 base64DecodeLinesAvx512(const char* in, u32 n, u32 lineChars, std::string_view end, u8* out);
#endif

}  // namespace vk_simd
