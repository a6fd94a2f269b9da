#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"

namespace vk_simd {

// Ascii85 in whole groups: four bytes are a number, five digits of base 85, most significant first, each written as
// '!' + digit; four zero bytes are the single character 'z'.

/// What the kernels may write beyond the characters or bytes that they count.
constexpr u32 kAscii85Slack = 16;

/// Writes `words` groups of four bytes and returns the number of characters.
u32 putAscii85(const u8* from, u32 words, u8* out);

/// How far a text could be read.
struct Ascii85Run {
  u32 chars, words;
};

/// Reads groups from text[0, n), four bytes each. Stops before one that holds another character or a number above
/// 2^32 - 1, and behind the last whole one. REQUIRES: room for the groups and `kAscii85Slack`.
Ascii85Run readAscii85(const u8* text, u32 n, u8* out);

u32 putAscii85Scalar(const u8* from, u32 words, u8* out);
Ascii85Run readAscii85Scalar(const u8* text, u32 n, u8* out);
#if VARNIK_HAVE_AVX2
u32 putAscii85Avx2(const u8* from, u32 words, u8* out);
Ascii85Run readAscii85Avx2(const u8* text, u32 n, u8* out);
#endif

/// The five characters of a number, also of 0; and the number of five characters, past 32 bits when there is none.
inline void putAscii85Digits(u32 word, u8* to) {
  constexpr u32 kSquare = 85 * 85;
  const u32 upper = word / kSquare, lower = word % kSquare;  // two divisions that do not wait for each other follow
  const u32 first = upper / kSquare, middle = upper % kSquare;
  to[0] = static_cast<u8>('!' + first);
  to[1] = static_cast<u8>('!' + middle / 85);
  to[2] = static_cast<u8>('!' + middle % 85);
  to[3] = static_cast<u8>('!' + lower / 85);
  to[4] = static_cast<u8>('!' + lower % 85);
}
u64 ascii85Value(const u8* digits);
constexpr bool isAscii85Digit(u8 c) {
  return c >= '!' && c <= 'u';
}

}  // namespace vk_simd
