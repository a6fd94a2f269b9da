#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

// A line of uuencoded text: a character for the number of its bytes, four characters for each three of them, LF. A
// character is 0x20 + six bits; 0x60 stands for zero, so that no line ends in a blank. When read both mean zero.
constexpr u32 kUuLineBytes = 45, kUuLineChars = 60;
/// What the kernels may write beyond the bytes or characters that they count.
constexpr u32 kUuSlack = 16;

/// Writes from[0, n) to `out` as lines of 45 bytes, the last one shorter, and returns the number of characters.
/// REQUIRES: room for 62 characters a line and `kUuSlack`.
u32 putUuLines(const u8* from, u32 n, u8* out);

/// How far a text of uuencoded lines could be read.
struct UuRun {
  u32 chars;  // characters consumed, line ends included
  u32 bytes;  // bytes written
};

/// Reads whole lines of 45 bytes that end in LF or CR LF from text[0, n) into `out`. Stops before a line that is not
/// like that, and may stop earlier near the end. REQUIRES: room for 45 bytes a line and `kUuSlack`.
UuRun readUuLines(const u8* text, u32 n, u8* out);

u32 putUuLinesScalar(const u8* from, u32 n, u8* out);
UuRun readUuLinesScalar(const u8* text, u32 n, u8* out);
#if VARNIK_HAVE_AVX2
u32 putUuLinesAvx2(const u8* from, u32 n, u8* out);
UuRun readUuLinesAvx2(const u8* text, u32 n, u8* out);
#endif

/// The character of six bits, and the six bits of a character that `isUuChar`.
constexpr u8 uuChar(u32 bits) {
  return static_cast<u8>(bits != 0 ? 0x20 + bits : 0x60);
}
constexpr bool isUuChar(u8 c) {
  return c >= 0x20 && c <= 0x60;
}
constexpr u32 uuBits(u8 c) {
  return (c - 0x20U) & 0x3F;
}

}  // namespace vk_simd
