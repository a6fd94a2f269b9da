#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

/// Writes the decimal value of each byte of from[0, n) to `out`, a comma behind each one, and returns the number of
/// characters. REQUIRES: room for 4 * `n` characters and `kDecListSlack`.
u32 putDecList(const u8* from, u32 n, u8* out);
/// What may be written beyond the characters.
constexpr u32 kDecListSlack = 16;

/// How far a list of decimal values could be read.
struct DecListRun {
  u32 chars;   // characters consumed, commas included
  u32 values;  // bytes written
};

/// Reads values of one to three digits, each below 256 and followed at once by a comma, from text[0, n) into at most
/// `room` bytes at `out`. Stops before anything else, and may stop earlier near the end.
DecListRun readDecList(const u8* text, u32 n, u8* out, u32 room);

u32 putDecListScalar(const u8* from, u32 n, u8* out);
DecListRun readDecListScalar(const u8* text, u32 n, u8* out, u32 room);
#if VARNIK_HAVE_AVX2
u32 putDecListAvx2(const u8* from, u32 n, u8* out);
DecListRun readDecListAvx2(const u8* text, u32 n, u8* out, u32 room);
#endif
#if VARNIK_HAVE_AVX512
u32 putDecListAvx512(const u8* from, u32 n, u8* out);
DecListRun readDecListAvx512(const u8* text, u32 n, u8* out, u32 room);
#endif

}  // namespace vk_simd
