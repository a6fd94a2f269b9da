#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

// base45 (RFC 9285) in whole groups: two bytes are a number, three digits of base 45, least significant first.
inline constexpr char kBase45Digits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ $%*+-./:";
/// What the kernels may write beyond the characters or bytes that they count.
constexpr u32 kBase45Slack = 16;

/// Writes the three digits of each of `pairs` pairs of bytes.
void putBase45(const u8* from, u32 pairs, u8* out);
/// Reads groups of three digits from text[0, n) and returns how many, two bytes for each. Stops before one that holds
/// another character or a number above 65535, and behind the last whole one.
u32 readBase45(const u8* text, u32 n, u8* out);

void putBase45Scalar(const u8* from, u32 pairs, u8* out);
u32 readBase45Scalar(const u8* text, u32 n, u8* out);
#if VARNIK_HAVE_AVX2
void putBase45Avx2(const u8* from, u32 pairs, u8* out);
u32 readBase45Avx2(const u8* text, u32 n, u8* out);
#endif

}  // namespace vk_simd
