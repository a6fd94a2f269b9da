// Charsets in which a byte is a character, to and from UTF-8, by tables that the caller supplies.
#pragma once

#include "varnik/services/memory/Types.h"
#include "varnik/simd/Cpu.h"
#include "varnik/simd/Utf.h"

namespace vk_simd {

/// What a byte stands for: bits 0 to 23 hold its UTF-8 bytes, the first one lowest, bits 24 and 25 their count (1 to
/// 3), and kNoCharacter is set where it stands for nothing (the bytes are those of U+FFFD then).
using Utf8Entry = u32;
constexpr Utf8Entry kNoCharacter = 0x80000000;
constexpr u32 entrySize(Utf8Entry entry) {
  return entry >> 24 & 3;
}

struct SingleByteCharset {
  const Utf8Entry* utf8;  // 256 entries

  // The byte of a UTF-16 unit is blocks[blockOf[unit >> 6]][unit & 63]: 0 for a unit that has none (and for unit 0).
  const u8* blockOf;  // 1,024 numbers; block 0 is all zero
  const u8 (*blocks)[64];
  u8 substitute;  // stands for what has no byte

  // What the kernels may rely on, both ways.
  bool ascii;     // the bytes below 0x80 are ASCII
  u32 latinFrom;  // bytes from here on (0x80 or 0xA0) are the characters of their own number; 0x100: none

  u8 byteOf(u32 unit) const { return blocks[blockOf[unit >> 6]][unit & 63]; }
};

/// Converts data[0, n) to UTF-8, as `convertUtf` does.
UtfProgress singleByteToUtf8(const SingleByteCharset& from, const u8* data, u32 n, u8* out, u32 room);
/// Returns how many bytes of UTF-8 that makes.
u64 singleByteUtf8Length(const SingleByteCharset& from, const u8* data, u32 n);
/// Converts UTF-8 to bytes. What is no UTF-8 and what has no byte becomes the substitute and counts as bad.
UtfProgress utf8ToSingleByte(const SingleByteCharset& to, const u8* data, u32 n, u8* out, u32 room);

UtfProgress singleByteToUtf8Scalar(const SingleByteCharset& from, const u8* data, u32 n, u8* out, u32 room);
u64 singleByteUtf8LengthScalar(const SingleByteCharset& from, const u8* data, u32 n);
UtfProgress utf8ToSingleByteScalar(const SingleByteCharset& to, const u8* data, u32 n, u8* out, u32 room);
#if VARNIK_HAVE_AVX2
UtfProgress singleByteToUtf8Avx2(const SingleByteCharset& from, const u8* data, u32 n, u8* out, u32 room);
u64 singleByteUtf8LengthAvx2(const SingleByteCharset& from, const u8* data, u32 n);
UtfProgress utf8ToSingleByteAvx2(const SingleByteCharset& to, const u8* data, u32 n, u8* out, u32 room);
#endif

}  // namespace vk_simd
